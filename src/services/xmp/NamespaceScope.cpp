#include "services/xmp/NamespaceScope.h"

namespace kelvara::xmp {

namespace {

/// All namespaces of metadata standards and programs together are some fifty. The limit keeps the search for
/// a prefix short in hostile files too.
constexpr std::size_t maximumBindings = 256;

Namespace namespaceOf(std::string_view uri) {
    if (uri == rdfNamespace) return Namespace::rdf;
    return uri == xmpNamespace ? Namespace::xmp : Namespace::other;
}

} // namespace

bool NamespaceScope::declare(std::string_view name, std::string_view value, std::size_t depth) {
    constexpr std::string_view keyword = "xmlns";
    if (!name.starts_with(keyword)) return true;
    name.remove_prefix(keyword.size());
    if (!name.empty() && name.front() != ':') return true;
    if (!name.empty()) {
        name.remove_prefix(1);
        if (name.empty() || value.empty() || name == keyword) return false;
    }
    if (m_bindings.size() >= maximumBindings) return false;
    m_bindings.push_back({std::string{name}, namespaceOf(value), depth});
    return true;
}

void NamespaceScope::leave(std::size_t depth) {
    while (!m_bindings.empty() && m_bindings.back().depth >= depth) m_bindings.pop_back();
}

std::optional<ExpandedName> NamespaceScope::element(std::string_view qualifiedName) const {
    if (qualifiedName.find(':') != std::string_view::npos) return attribute(qualifiedName);
    return ExpandedName{find({}).value_or(Namespace::other), qualifiedName};
}

std::optional<ExpandedName> NamespaceScope::attribute(std::string_view qualifiedName) const {
    const auto colon = qualifiedName.find(':');
    if (colon == std::string_view::npos) return ExpandedName{Namespace::other, qualifiedName};
    const auto prefix = qualifiedName.substr(0, colon);
    const auto local = qualifiedName.substr(colon + 1);
    if (prefix.empty() || local.empty()) return std::nullopt;
    if (prefix == "xml" || prefix == "xmlns") return ExpandedName{Namespace::other, local};
    const auto space = find(prefix);
    if (!space) return std::nullopt;
    return ExpandedName{*space, local};
}

std::optional<std::string> NamespaceScope::xmpPrefix() const {
    for (auto binding = m_bindings.rbegin(); binding != m_bindings.rend(); ++binding) {
        if (binding->space != Namespace::xmp || binding->prefix.empty()) continue;
        if (find(binding->prefix) == Namespace::xmp) return binding->prefix;
    }
    return std::nullopt;
}

std::string NamespaceScope::unboundPrefix() const {
    std::string prefix = "xmp";
    for (int n = 1; find(prefix); ++n) prefix = "xmp" + std::to_string(n);
    return prefix;
}

std::optional<Namespace> NamespaceScope::find(std::string_view prefix) const {
    for (auto binding = m_bindings.rbegin(); binding != m_bindings.rend(); ++binding) {
        if (binding->prefix == prefix) return binding->space;
    }
    return std::nullopt;
}

} // namespace kelvara::xmp
