#include "views/PresetPreview.h"

#include <utility>

namespace kelvara {

namespace {

constexpr std::size_t neighboursAhead = 2;

bool drawsTheSame(const std::shared_ptr<const DevelopPreset>& a,
                  const std::shared_ptr<const DevelopPreset>& b) {
    return a == b || (a && b && a->revision == b->revision);
}

} // namespace

PresetPreview::PresetPreview(LibraryViewModel& library, ThumbnailService& thumbnails,
                             PresetRenderer& renderer, Executor& rendering, Executor& main,
                             std::function<Preset(const FileURL&)> presetOf, std::function<void()> onChange)
    : m_library{library}, m_thumbnails{thumbnails}, m_renderer{renderer}, m_presetOf{std::move(presetOf)},
      m_onChange{std::move(onChange)}, m_halving{rendering, main} {
    m_rest.setSingleShot(true);
    m_rest.setInterval(rest);
    m_rest.callOnTimeout([this] { refine(); });
}

void PresetPreview::show(Subject subject) {
    const auto isSamePhoto = subject.url == m_subject.url;
    const auto isSamePicture = isSamePhoto && subject.plain == m_subject.plain;
    const auto isSamePreset = drawsTheSame(subject.preset, m_subject.preset);
    if (isSamePicture && isSamePreset && subject.level == m_subject.level) return;
    m_subject = std::move(subject);
    const auto hasWork = m_subject.preset && m_subject.plain;
    withdraw(isSamePicture && hasWork);
    if (!isSamePhoto || !isSamePreset) m_ahead.clear();
    // The preset before stays in sight until the new one is drawn: anything else would flicker.
    if (!isSamePhoto || !hasWork) m_drawn = nullptr;
    if (!m_subject.plain) return;
    if (hasWork && !m_live.isPending()) drawLive();
    if (!isSamePhoto) drawAhead();
    m_rest.start();
}

void PresetPreview::withdraw(bool keepsLive) {
    if (!keepsLive) m_live = {};
    m_fine = {};
    m_halving.cancel();
    m_isHalving = false;
    m_rest.stop();
}

bool PresetPreview::isLoading() const {
    return m_live.isPending() || m_fine.isPending() || m_isHalving || (m_rest.isActive() && m_subject.preset);
}

bool PresetPreview::isRefining() const {
    return isLoading() && m_subject.level < liveLevel() && !isDrawn(m_subject.level);
}

int PresetPreview::liveLevel() const {
    auto level = m_subject.level;
    while (m_subject.plain->bitmap(level)->size().longestSide() > liveSide) ++level;
    return level;
}

bool PresetPreview::isCurrent(PresetRevision revision) const {
    return m_subject.preset && m_subject.preset->revision == revision;
}

bool PresetPreview::isDrawn(int level) const {
    return m_drawn && isCurrent(m_drawnRevision) &&
           m_drawn->image().width() >= m_subject.plain->level(level).width();
}

bool PresetPreview::takeCached(int level) {
    if (isDrawn(level)) return true;
    const auto cached = m_renderer.cached(*m_subject.preset, m_subject.url, m_subject.plain->bitmap(level));
    if (!cached) return false;
    take(cached, m_subject.preset->revision);
    return isDrawn(level);
}

ImageRequest PresetPreview::draw(int level) {
    const auto revision = m_subject.preset->revision;
    return m_renderer.render(
        *m_subject.preset, m_subject.url, m_subject.plain->bitmap(level),
        [this, level, revision](const BitmapPtr& bitmap) { receive(bitmap, level, revision); });
}

void PresetPreview::drawLive() {
    if (!takeCached(m_subject.level) && !takeCached(liveLevel())) m_live = draw(liveLevel());
}

void PresetPreview::receive(const BitmapPtr& bitmap, int level, PresetRevision revision) {
    const auto isOutdated = !isCurrent(revision);
    // An older one is nearer to what is wanted than what is in sight, unless that is already there.
    const auto isBetter = isOutdated ? bitmap && !(m_drawn && isCurrent(m_drawnRevision)) : !isDrawn(level);
    if (isBetter) take(bitmap, revision);
    if (isOutdated || level > liveLevel()) drawLive();
    m_onChange();
}

void PresetPreview::take(const BitmapPtr& bitmap, PresetRevision revision) {
    const auto show = [this, revision](Picture picture) {
        // Without memory for the new preset's picture no other preset's may stay.
        if (!picture && m_drawnRevision == revision) return;
        m_drawn = std::move(picture);
        m_drawnRevision = revision;
    };
    if (bitmap == m_subject.plain->bitmap(0)) return show(m_subject.plain); // the preset changes nothing
    if (!bitmap || bitmap->size().longestSide() <= liveSide) return show(ImagePyramid::build(bitmap));
    m_isHalving = true;
    m_halving.start([bitmap](const std::stop_token& stop) { return ImagePyramid::build(bitmap, stop); },
                    [this, show](Picture picture) {
                        m_isHalving = false;
                        show(std::move(picture));
                        m_onChange();
                    });
}

void PresetPreview::refine() {
    if (m_subject.preset && !isDrawn(m_subject.level) && !m_isHalving) m_fine = draw(m_subject.level);
    drawAhead();
    m_onChange();
}

void PresetPreview::drawAhead() {
    // What the loupe shows first of a photo, so that no neighbour appears without its preset and edits.
    for (const auto& item : m_library.neighbours(m_subject.url, neighboursAhead)) {
        const auto preset = m_presetOf(item.url);
        const auto thumbnail = preset ? m_thumbnails.largestCachedThumbnail(item.url) : nullptr;
        if (!thumbnail || m_renderer.cached(*preset, item.url, thumbnail)) continue;
        m_ahead.push_back(m_renderer.render(*preset, item.url, thumbnail, [](const auto&) {}));
    }
}

} // namespace kelvara
