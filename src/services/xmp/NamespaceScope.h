#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara::xmp {

inline constexpr std::string_view rdfNamespace = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr std::string_view xmpNamespace = "http://ns.adobe.com/xap/1.0/";

/// The namespaces that matter for a sidecar.
enum class Namespace { other, rdf, xmp };

/// A name of an element or attribute, its prefix resolved.
struct ExpandedName {
    Namespace space = Namespace::other;
    std::string_view local;

    friend bool operator==(const ExpandedName&, const ExpandedName&) = default;
};

/// The namespace prefixes in force at one place of a document while it is walked through.
///
/// Does the parser's work, because its own resolution builds a text for every one of the hundreds of
/// attributes of a sidecar and thereby doubles the time to read one.
class NamespaceScope {
public:
    /// Takes the declaration that the attribute `name` of an element at `depth` makes, if it is one. False
    /// where it is not allowed or one too many.
    bool declare(std::string_view name, std::string_view value, std::size_t depth);
    /// Forgets the declarations of elements at `depth` and deeper.
    void leave(std::size_t depth);

    /// Empty where the prefix is not bound.
    [[nodiscard]] std::optional<ExpandedName> element(std::string_view qualifiedName) const;
    /// As above; the default namespace does not apply.
    [[nodiscard]] std::optional<ExpandedName> attribute(std::string_view qualifiedName) const;

    /// The prefix to use for an attribute of the XMP basic namespace, innermost first; empty where none is
    /// bound.
    [[nodiscard]] std::optional<std::string> xmpPrefix() const;
    /// "xmp", or one like it where that means something else here.
    [[nodiscard]] std::string unboundPrefix() const;

private:
    struct Binding {
        std::string prefix; // empty for the default namespace
        Namespace space = Namespace::other;
        std::size_t depth = 0;
    };

    [[nodiscard]] std::optional<Namespace> find(std::string_view prefix) const;

    std::vector<Binding> m_bindings; // innermost last
};

} // namespace kelvara::xmp
