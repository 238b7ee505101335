#include "presets/EditHistory.h"

#include "presets/EditStore.h"

#include <algorithm>

namespace kelvara {

void EditHistory::beginGesture() {
    m_isOpen = false;
    // A slider that came back to where it was leaves nothing to undo.
    const auto isNothing = [](const Edit& edit) { return edit.before == edit.after; };
    if (m_done == 0 || !std::ranges::all_of(m_steps[m_done - 1].edits, isNothing)) return;
    m_steps.erase(m_steps.begin() + static_cast<std::ptrdiff_t>(--m_done));
    didChange(EditHistoryProperty::names);
}

void EditHistory::setSlider(Slider slider, double value, const FileURL& photo) {
    auto adjustments = m_store.adjustments(photo);
    adjustments.set(slider, value);
    const Name name{Action::slider, slider};
    if (!continues(name, photo)) {
        beginGesture();
        m_isOpen = replace(adjustments, photo, name);
    } else {
        m_steps.back().edits.front().after = adjustments;
        m_store.setAdjustments(adjustments, photo);
    }
}

void EditHistory::setAutomatic(const LightAdjustments& adjustments, const FileURL& photo) {
    beginGesture();
    replace(adjustments, photo, {Action::automatic});
}

void EditHistory::reset(const FileURL& photo) {
    beginGesture();
    replace({}, photo, {Action::reset});
}

void EditHistory::paste(std::span<const FileURL> photos) {
    beginGesture();
    const auto& copied = m_store.copiedAdjustments();
    if (copied && record(*copied, photos, {Action::paste})) m_store.pasteAdjustments(photos);
}

std::optional<EditHistory::Name> EditHistory::undoName() const {
    return m_done > 0 ? std::optional{m_steps[m_done - 1].name} : std::nullopt;
}

std::optional<EditHistory::Name> EditHistory::redoName() const {
    return m_done < m_steps.size() ? std::optional{m_steps[m_done].name} : std::nullopt;
}

std::vector<FileURL> EditHistory::undo() {
    beginGesture();
    return m_done > 0 ? apply(m_steps[--m_done], &Edit::before) : std::vector<FileURL>{};
}

std::vector<FileURL> EditHistory::redo() {
    beginGesture();
    return m_done < m_steps.size() ? apply(m_steps[m_done++], &Edit::after) : std::vector<FileURL>{};
}

bool EditHistory::replace(const LightAdjustments& adjustments, const FileURL& photo, Name name) {
    if (!record(adjustments, {&photo, 1}, name)) return false;
    m_store.setAdjustments(adjustments, photo);
    return true;
}

bool EditHistory::record(const LightAdjustments& adjustments, std::span<const FileURL> photos, Name name) {
    Step step{name, {}};
    for (const auto& photo : photos) {
        const auto before = m_store.adjustments(photo);
        if (before != adjustments) step.edits.push_back({photo, before, adjustments});
    }
    if (step.edits.empty()) return false;
    const Change change{*this};
    m_steps.resize(m_done);
    m_steps.push_back(std::move(step));
    if (m_steps.size() > mostSteps) m_steps.erase(m_steps.begin());
    m_done = m_steps.size();
    didChange(EditHistoryProperty::names);
    return true;
}

bool EditHistory::continues(Name name, const FileURL& photo) const {
    if (!m_isOpen || m_done == 0 || m_done < m_steps.size()) return false;
    const auto& last = m_steps.back();
    return last.name == name && last.edits.front().photo == photo;
}

std::vector<FileURL> EditHistory::apply(const Step& step, LightAdjustments Edit::*side) {
    const Change change{*this};
    didChange(EditHistoryProperty::names);
    std::vector<FileURL> photos;
    std::vector<LightAdjustments> adjustments;
    for (const auto& edit : step.edits) {
        photos.push_back(edit.photo);
        adjustments.push_back(edit.*side);
    }
    m_store.setAdjustments(adjustments, photos);
    return photos;
}

} // namespace kelvara
