#include "presets/EditStore.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace kelvara {

namespace {

using Slider = LightAdjustments::Slider;

/// That of millions of photos.
constexpr std::int64_t maximumBytes = std::int64_t{1} << 30;

/// The next save must not take away what somebody may still mend.
void putAside(FileSystem& files, const FileURL& url) {
    const auto name = url.appendingExtension("damaged");
    auto moved = files.moveFile(url, name);
    for (int i = 1; !moved && moved.error().code == std::errc::file_exists; ++i) {
        moved = files.moveFile(url, name.appendingExtension(std::to_string(i)));
    }
}

LightAdjustments parsedAdjustments(const nlohmann::json& values) {
    LightAdjustments adjustments;
    for (const auto slider : LightAdjustments::sliders) {
        const auto value = values.find(LightAdjustments::rawValue(slider));
        if (value != values.end() && value->is_number()) adjustments.set(slider, value->get<double>());
    }
    return adjustments;
}

std::string jsonText(const std::unordered_map<FileURL, LightAdjustments>& edits) {
    auto json = nlohmann::json::object();
    for (const auto& [key, adjustments] : edits) {
        auto values = nlohmann::json::object();
        for (const auto slider : LightAdjustments::sliders) {
            if (const double value = adjustments[slider]; value != 0) {
                values[std::string{LightAdjustments::rawValue(slider)}] = value;
            }
        }
        if (!values.empty()) json[key.uri()] = std::move(values);
    }
    return json.dump(1) + '\n';
}

} // namespace

EditStore::EditStore(FileSystem& files, FileURL fileURL, Executor& writer, Executor& main, Alarm alarm)
    : m_files{files}, m_fileURL{std::move(fileURL)}, m_writer{writer}, m_main{main},
      m_alarm{std::move(alarm)}, m_loading{writer, main} {
    m_loading.start([&files, url = m_fileURL](const std::stop_token&) { return read(files, url); },
                    [this](Edits stored) { merge(std::move(stored)); });
}

EditStore::~EditStore() { save(); }

LightAdjustments EditStore::adjustments(const FileURL& photo) const {
    const auto found = m_adjustments.find(photo.stemKey());
    return found != m_adjustments.end() ? found->second : LightAdjustments{};
}

void EditStore::setAdjustments(const LightAdjustments& adjustments, const FileURL& photo) {
    const Change change{*this};
    store(adjustments, photo);
    scheduleSave();
}

void EditStore::setAdjustments(std::span<const LightAdjustments> adjustments,
                               std::span<const FileURL> photos) {
    const Change change{*this};
    for (std::size_t i = 0; i < photos.size(); ++i) store(adjustments[i], photos[i]);
    scheduleSave();
}

void EditStore::copyAdjustments(const FileURL& photo) {
    assign(EditProperty::copiedAdjustments, m_copied, std::optional{adjustments(photo)});
}

void EditStore::pasteAdjustments(std::span<const FileURL> photos) {
    if (!m_copied) return;
    const Change change{*this};
    for (const auto& photo : photos) store(*m_copied, photo);
    scheduleSave();
}

std::optional<DevelopPreset> EditStore::exportLook(const std::optional<DevelopPreset>& preset,
                                                   const FileURL& photo) const {
    return DevelopPreset::combining(preset, adjustments(photo));
}

EditStore::Edits EditStore::read(FileSystem& files, const FileURL& url) {
    Edits edits;
    const auto text = files.readFile(url, maximumBytes);
    if (!text && text.error().code == std::errc::no_such_file_or_directory) return edits;
    const auto json = text ? nlohmann::json::parse(*text, nullptr, false) : nlohmann::json{};
    if (!json.is_object()) {
        putAside(files, url);
        return edits;
    }
    for (const auto& [key, values] : json.items()) {
        const auto photo = FileURL::fromURI(key);
        if (!photo || !values.is_object()) continue;
        if (const auto adjustments = parsedAdjustments(values); !adjustments.isEmpty()) {
            edits.emplace(*photo, adjustments);
        }
    }
    return edits;
}

void EditStore::merge(Edits stored) {
    const Change change{*this};
    m_isLoaded = true;
    m_adjustments.merge(stored);
    std::erase_if(m_adjustments, [](const auto& edit) { return edit.second.isEmpty(); });
    didChange(EditProperty::adjustments);
    if (m_needsSave) scheduleSave();
}

void EditStore::store(const LightAdjustments& adjustments, const FileURL& photo) {
    if (adjustments == this->adjustments(photo) && m_isLoaded) return;
    if (adjustments.isEmpty() && m_isLoaded) {
        m_adjustments.erase(photo.stemKey());
    } else {
        m_adjustments.insert_or_assign(photo.stemKey(), adjustments);
    }
    m_needsSave = true;
    didChange(EditProperty::adjustments);
}

void EditStore::scheduleSave() {
    if (!m_needsSave || !m_isLoaded) return;
    m_alarm(saveDelay, [weak = std::weak_ptr{m_self}, change = ++m_changes] {
        const auto self = weak.lock();
        if (self && (*self)->m_changes == change) (*self)->save();
    });
}

void EditStore::save() {
    if (!m_needsSave || !m_isLoaded) return;
    m_needsSave = false;
    m_writer.post([&files = m_files, &main = m_main, url = m_fileURL, edits = m_adjustments,
                   weak = std::weak_ptr{m_self}] {
        const auto folder = files.createFolders(url.parent());
        if (folder && files.writeFileAtomically(url, jsonText(edits))) return;
        main.post([weak] {
            if (const auto self = weak.lock()) (*self)->m_needsSave = true;
        });
    });
}

} // namespace kelvara
