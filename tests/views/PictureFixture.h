#pragma once

#include "library/LibraryFixture.h"
#include "presets/EditStore.h"
#include "presets/PresetRenderer.h"
#include "services/MetadataService.h"
#include "services/PreviewService.h"
#include "services/ThumbnailService.h"
#include "views/ThumbnailSources.h"

#include <QColor>
#include <QImage>
#include <QString>

#include <cstdlib>

namespace kelvara {

/// A library of real pictures, whose decodes run when the test says so.
class PictureFixture : public LibraryFixture {
protected:
    /// A JPEG of one colour.
    void addPhoto(const std::string& name, const QColor& color, const QSize& size = {300, 200}) {
        QImage image{size, QImage::Format_RGB32};
        image.fill(color);
        ASSERT_TRUE(image.save(QString::fromStdString(m_card.at(name).path()), "JPEG", 90));
    }
    [[nodiscard]] static std::string numbered(int number) {
        return QStringLiteral("p%1.jpg").arg(number, 4, 10, QLatin1Char{'0'}).toStdString();
    }
    void addPhotos(int count) {
        for (int i = 0; i < count; ++i) {
            addPhoto(numbered(i), QColor::fromHsv(i * 17 % 360, 200, 200), {60, 40});
        }
    }
    LibraryViewModel& open() {
        m_preferences.setText("sortOrder", "name");
        return start(m_card.url());
    }
    /// Runs everything there is to do, decodes included.
    void settlePictures() {
        while (m_decoding.runOne() || m_reading.runOne() || m_rendering.runOne() ||
               m_thumbnailDrawing.runOne() || m_main.runOne()) {
        }
    }
    void edit(const FileURL& photo, double exposure) {
        LightAdjustments edits;
        edits.set(LightAdjustments::Slider::exposure, exposure);
        m_edits.setAdjustments(edits, photo);
    }
    [[nodiscard]] FileURL photo(std::size_t index) const { return m_library->visibleItems()[index].url; }

    ManualExecutor m_decoding;
    ManualExecutor m_rendering;
    ManualExecutor m_reading; ///< Of metadata.
    int m_metadataReads = 0;
    int m_dumps = 0;
    ThumbnailService m_thumbnails{ImageExecutors{m_decoding, m_decoding, m_main}};
    /// Of each photo the ISO value says which one it is, and the dump how often one was made.
    MetadataService m_metadata{
        ImageExecutors{m_reading, m_reading, m_main},
        {.exif =
             [this](const FileURL& url, const std::stop_token&) {
                 ++m_metadataReads;
                 ExifInfo info;
                 info.iso = 100 + std::atoi(std::string{url.stem().substr(1)}.c_str());
                 return info;
             },
         .sections =
             [this](const FileURL& url, const std::stop_token&) {
                 ++m_dumps;
                 return std::vector<MetadataSection>{{"Exif", {{"Name", std::string{url.name()}}}}};
             }}};
    PreviewService m_previews{ImageExecutors{m_decoding, m_decoding, m_main}, m_thumbnails};
    EditStore m_edits{m_files, FileURL{"/nowhere/Edits.json"}, m_background, m_main,
                      [](auto, const auto&) {}};
    ManualExecutor m_thumbnailDrawing; ///< Through edits.
    PresetRenderer m_thumbnailRenderer{m_thumbnailDrawing, m_main};
    ThumbnailSources m_sources{m_thumbnails, m_edits, m_thumbnailRenderer};
};

} // namespace kelvara
