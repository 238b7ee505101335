#pragma once

#include "model/FileURL.h"
#include "model/LightAdjustments.h"
#include "model/Observable.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace kelvara {

class EditStore;

enum class EditHistoryProperty { names, count };

/// Everything the user does to the photos' edits goes through here, so that it can be undone, a gesture at a
/// time. Lasts for the session. Main thread.
class EditHistory : public Observable<EditHistoryProperty> {
public:
    using Slider = LightAdjustments::Slider;
    enum class Action { slider, automatic, reset, paste };
    /// What a step did.
    struct Name {
        Action action = Action::slider;
        Slider slider{}; ///< Which, where it was one.
        friend bool operator==(const Name&, const Name&) = default;
    };

    static constexpr std::size_t mostSteps = 200; ///< Older ones are forgotten.

    /// The store outlives it.
    explicit EditHistory(EditStore& store) : m_store{store} {}
    [[nodiscard]] EditStore& store() const { return m_store; }

    /// What follows is a step of its own, even where it moves the same slider of the same photo.
    void beginGesture();
    void setSlider(Slider slider, double value, const FileURL& photo);
    void setAutomatic(const LightAdjustments& adjustments, const FileURL& photo);
    void reset(const FileURL& photo);
    /// Gives each photo the copied edits, if any were copied.
    void paste(std::span<const FileURL> photos);

    /// What the next undo or redo is about; empty where there is none.
    [[nodiscard]] std::optional<Name> undoName() const;
    [[nodiscard]] std::optional<Name> redoName() const;
    /// Takes the last step back, and tells which photos that changed.
    std::vector<FileURL> undo();
    std::vector<FileURL> redo();

private:
    struct Edit {
        FileURL photo;
        LightAdjustments before;
        LightAdjustments after;
    };
    struct Step {
        Name name;
        std::vector<Edit> edits;
    };

    /// Makes a step of what the photos have and are about to get. Whether that will change anything.
    bool record(const LightAdjustments& adjustments, std::span<const FileURL> photos, Name name);
    bool replace(const LightAdjustments& adjustments, const FileURL& photo, Name name);
    [[nodiscard]] bool continues(Name name, const FileURL& photo) const;
    std::vector<FileURL> apply(const Step& step, LightAdjustments Edit::*side);

    EditStore& m_store;
    std::vector<Step> m_steps;
    std::size_t m_done = 0; // of the steps; those after it were undone
    bool m_isOpen = false;  // the last one may still grow
};

} // namespace kelvara
