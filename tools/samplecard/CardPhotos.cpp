#include "samplecard/CardPhotos.h"

#include "samplecard/DNG.h"
#include "samplecard/HEIC.h"
#include "samplecard/JPEG.h"
#include "samplecard/MP4.h"
#include "samplecard/Noise.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace kelvara::samplecard {
namespace {

constexpr std::int64_t firstDay = 1714694400; // 2024-05-03 00:00:00 UTC

std::int64_t moment(int day, int hour, int minute, int second = 0) {
    return firstDay + (((day * 24LL + hour) * 60 + minute) * 60 + second);
}

enum class Form { jpeg, raw, pair, burst, bracket, heic, deepHEIC, video };

struct Frame {
    Scene scene;
    std::uint32_t seed;
    int day;
    int hour;
    int minute;
    Form form = Form::jpeg;
    int longSide = 3000;
    bool portrait = false;
};

// In the order of capture, so that the numbers rise with the time.
const std::vector<Frame>& frames() {
    using enum Scene;
    static const std::vector<Frame> all{
        // The first day, in the mountains.
        {mountains, 5, 0, 5, 58, Form::pair},
        {mountains, 12, 0, 6, 21, Form::jpeg},
        {lake, 12, 0, 6, 47, Form::raw},
        {lake, 3, 0, 7, 3, Form::bracket},
        {forest, 1, 0, 9, 15, Form::jpeg, 3000, true},
        {forest, 4, 0, 9, 32, Form::pair, 3000, true},
        {flower, 1, 0, 10, 8, Form::burst},
        {flower, 5, 0, 10, 26, Form::jpeg, 3000, true},
        {mountains, 15, 0, 12, 40, Form::jpeg},
        {mountains, 6, 0, 13, 5, Form::jpeg},
        {hills, 1, 0, 15, 12, Form::jpeg},
        {lake, 11, 0, 19, 31, Form::raw},
        {silhouette, 1, 0, 20, 44, Form::jpeg},
        {stars, 1, 0, 23, 18, Form::pair, 3600},
        // The second, by the sea and in the city.
        {sea, 1, 1, 5, 41, Form::jpeg},
        {sea, 2, 1, 5, 52, Form::bracket},
        {dunes, 1, 1, 8, 20, Form::pair},
        {dunes, 2, 1, 8, 33, Form::jpeg},
        {hills, 3, 1, 11, 2, Form::jpeg},
        {flower, 3, 1, 11, 46, Form::raw},
        {stillLife, 1, 1, 14, 5, Form::jpeg},
        {stillLife, 2, 1, 14, 22, Form::heic, 2400},
        {sea, 4, 1, 19, 58, Form::jpeg, 4200},
        {silhouette, 3, 1, 20, 31, Form::pair},
        {city, 1, 1, 22, 4, Form::jpeg},
        {city, 2, 1, 22, 17, Form::burst},
        {city, 3, 1, 22, 40, Form::raw, 3000, true},
        // The third, a week later.
        {hills, 2, 8, 6, 12, Form::jpeg},
        {mountains, 16, 8, 7, 25, Form::jpeg, 2400},
        {lake, 8, 8, 8, 10, Form::deepHEIC, 2400},
        {forest, 2, 8, 10, 2, Form::jpeg},
        {flower, 2, 8, 10, 48, Form::pair},
        {flower, 7, 8, 11, 3, Form::burst},
        {dunes, 4, 8, 15, 55, Form::jpeg},
        {dunes, 5, 8, 16, 20, Form::raw},
        {stillLife, 4, 8, 17, 9, Form::jpeg},
        {sea, 6, 8, 20, 15, Form::video, 2400},
        {silhouette, 2, 8, 20, 52, Form::jpeg, 6000, true},
        {stars, 3, 8, 23, 40, Form::jpeg},
        {stars, 4, 8, 23, 55, Form::raw, 2400, true},
    };
    return all;
}

int scaled(int side, double scale) {
    return std::max(48, static_cast<int>(std::lround(side * scale / 2)) * 2);
}

/// One scene on the card: paints it once and writes it in its form under consecutive numbers.
class FrameJob {
public:
    FrameJob(const Frame& frame, int number, double scale)
        : m_frame{frame}, m_number{number}, m_scale{scale}, m_shot{plausibleShot(frame.scene, frame.seed,
                                                                                 moment(frame.day, frame.hour,
                                                                                        frame.minute,
                                                                                        7 + number % 50))} {
        m_long = scaled(frame.longSide, scale);
        m_short = scaled(frame.longSide * 2 / 3, scale);
    }

    static int numbersOf(Form form) { return form == Form::burst ? 4 : form == Form::bracket ? 3 : 1; }

    std::vector<CardFile> operator()() {
        switch (m_frame.form) {
        case Form::jpeg:
            addJPEG(painted(0), 0);
            break;
        case Form::raw:
            addRaw(painted(0), DNGOptions::Storage::lossless);
            break;
        case Form::pair: {
            const Picture picture = painted(0);
            addRaw(picture, m_number % 2 == 0 ? DNGOptions::Storage::fourteenBitsPacked
                                              : DNGOptions::Storage::lossless);
            addJPEG(picture, 0);
            break;
        }
        case Form::burst:
            addBurst();
            break;
        case Form::bracket:
            addBracket();
            break;
        case Form::heic:
            add(0, "HEIC", encodeHEIC(painted(0), m_shot, {}));
            break;
        case Form::deepHEIC:
            addDeep();
            break;
        case Form::video:
            addVideo();
            break;
        }
        return std::move(m_files);
    }

private:
    /// `margin` more on each side, in hundredths of the picture's.
    [[nodiscard]] Picture painted(int margin) const {
        const int width = (m_frame.portrait ? m_short : m_long) * (100 + 2 * margin) / 100;
        const int height = (m_frame.portrait ? m_long : m_short) * (100 + 2 * margin) / 100;
        return paint(m_frame.scene, width, height, m_frame.seed);
    }

    void add(int index, const char* extension, std::string bytes) {
        m_files.push_back({fmt::format("DCIM/{}KELVA/KEL_{:04}.{}", m_frame.day < 2 ? 100 : 101,
                                       m_number + index, extension),
                           std::move(bytes), m_shot.time, false});
    }

    void addJPEG(const Picture& picture, int index) {
        // A camera turns upright shots by its orientation tag; every other portrait is held the other way
        // round.
        m_shot.orientation = picture.height > picture.width ? (m_number % 2 == 0 ? 6 : 8) : 1;
        JPEGOptions options;
        options.quality = 89;
        add(index, "JPG", photoJPEG(picture, m_shot, options));
    }

    void addRaw(const Picture& picture, DNGOptions::Storage storage) {
        m_shot.orientation = picture.height > picture.width ? 8 : 1;
        DNGOptions options;
        options.storage = storage;
        add(0, "DNG", encodeDNG(picture, m_shot, options));
    }

    /// Held by hand: the view shifts a little from frame to frame.
    void addBurst() {
        const Picture wide = painted(2);
        const int width = wide.width * 100 / 104;
        const int height = wide.height * 100 / 104;
        Random shake{m_frame.seed * 7919ULL};
        for (int i = 0; i < numbersOf(Form::burst); ++i) {
            addJPEG(cropped(wide, shake.integer(0, wide.width - width),
                            shake.integer(0, wide.height - height), width, height),
                    i);
            m_shot.time += 1;
        }
    }

    void addBracket() {
        const Picture picture = painted(0);
        const TiffDirectory::Rational middle = m_shot.exposure;
        for (int i = 0; i < 3; ++i) {
            const int stops = i == 0 ? 0 : i == 1 ? -1 : 1;
            m_shot.bias = {stops * 3, 3};
            m_shot.exposure = {middle.first * (stops > 0 ? 2 : 1), middle.second * (stops < 0 ? 2 : 1)};
            addJPEG(stops == 0 ? picture : exposed(picture, static_cast<float>(stops)), i);
            m_shot.time += 1;
        }
    }

    void addDeep() {
        HEICOptions options;
        options.bits = 10;
        options.thumbnailSide = 512;
        add(0, "HIF", encodeHEIC(painted(0), m_shot, options));
    }

    void addVideo() {
        MP4Options options;
        options.width = scaled(1280, m_scale);
        options.height = scaled(720, m_scale);
        options.time = m_shot.time;
        add(0, "MP4", encodeMP4(painted(0), options));
    }

    Frame m_frame;
    int m_number;
    double m_scale;
    Shot m_shot;
    int m_long = 0;
    int m_short = 0;
    std::vector<CardFile> m_files;
};

/// A single JPEG with a name and properties of its own.
CardJob special(std::string path, Scene scene, std::uint32_t seed, int width, int height, std::int64_t time,
                int orientation, const JPEGOptions& options, Shot::ColourTag tag = Shot::ColourTag::sRGB) {
    return [=] {
        Shot shot = plausibleShot(scene, seed, time);
        shot.orientation = orientation;
        shot.colourTag = tag;
        return std::vector<CardFile>{
            {path, photoJPEG(paint(scene, width, height, seed), shot, options), time, false}};
    };
}

void addOrientations(std::vector<CardJob>& jobs, double scale) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto index = static_cast<std::uint32_t>(orientation);
        const bool portrait = orientation % 2 == 0;
        jobs.push_back(special(fmt::format("DCIM/101KELVA/ORIENT_{}.JPG", orientation),
                               allScenes[index % allScenes.size()], 20 + index,
                               scaled(portrait ? 1200 : 1800, scale), scaled(portrait ? 1800 : 1200, scale),
                               moment(8, 12, 30, orientation), orientation, {}));
    }
}

void addVariants(std::vector<CardJob>& jobs, double scale) {
    const int width = scaled(1800, scale);
    const int height = scaled(1200, scale);
    const auto add = [&](const char* stem, Scene scene, std::uint32_t seed, int minute,
                         const JPEGOptions& options, Shot::ColourTag tag) {
        jobs.push_back(special(fmt::format("DCIM/101KELVA/{}.JPG", stem), scene, seed, width, height,
                               moment(8, 13, minute), 1, options, tag));
    };
    JPEGOptions wide;
    wide.colours = ColourProfile::adobeRGB;
    add("_WIDE001", Scene::flower, 11, 1, wide, Shot::ColourTag::uncalibrated);
    wide.embedsProfile = false;
    add("_WIDE002", Scene::dunes, 12, 2, wide, Shot::ColourTag::adobeByIndex);
    JPEGOptions display;
    display.colours = ColourProfile::displayP3;
    add("P3_0003", Scene::sea, 13, 3, display, Shot::ColourTag::uncalibrated);
    JPEGOptions grey;
    grey.components = JPEGOptions::Components::grey;
    add("GREY0004", Scene::hills, 14, 4, grey, Shot::ColourTag::sRGB);
    JPEGOptions inks;
    inks.components = JPEGOptions::Components::cmyk;
    add("CMYK0005", Scene::stillLife, 15, 5, inks, Shot::ColourTag::uncalibrated);
    JPEGOptions progressive;
    progressive.progressive = true;
    progressive.fullChroma = true;
    add("PROG0006", Scene::lake, 16, 6, progressive, Shot::ColourTag::sRGB);
    jobs.push_back([scale] {
        Shot shot = plausibleShot(Scene::city, 17, moment(8, 13, 7));
        shot.orientation = 6;
        const Picture picture = paint(Scene::city, scaled(1000, scale), scaled(1500, scale), 17);
        return std::vector<CardFile>{
            {"DCIM/101KELVA/TURN0007.HEIC", encodeHEIC(picture, shot, {}), shot.time, false}};
    });
}

/// Names as they come from other systems: accents both ways, spaces, bytes that are no text, many folders
/// deep.
void addNames(std::vector<CardJob>& jobs, double scale) {
    const int width = scaled(1500, scale);
    const int height = scaled(1000, scale);
    std::string deep = "DCIM/102DEEP";
    for (int level = 1; level <= 28; ++level) deep += fmt::format("/level {:02}", level);
    const std::vector<std::pair<std::string, Scene>> names{
        {"DCIM/101KELVA/S\u00F6nnenaufgang \u00FCber H\u00FCgeln.JPG", Scene::silhouette}, // composed
        {"DCIM/101KELVA/Ole\u0301 verano.JPG", Scene::dunes},                              // decomposed
        {"DCIM/101KELVA/\u6E56\u306E\u671D.JPG", Scene::lake},
        {"DCIM/101KELVA/two  spaces & [brackets] #1.jpeg", Scene::flower},
        {"DCIM/101KELVA/caf\xE9 \xFF.JPG", Scene::stillLife}, // Latin-1, not UTF-8
        {deep + "/bottom.JPG", Scene::stars},
    };
    for (std::size_t i = 0; i < names.size(); ++i) {
        jobs.push_back([=, path = names[i].first, scene = names[i].second] {
            const auto seed = static_cast<std::uint32_t>(30 + i);
            const Shot shot = plausibleShot(scene, seed, moment(8, 14, static_cast<int>(i)));
            return std::vector<CardFile>{
                {path, photoJPEG(paint(scene, width, height, seed), shot, {}), shot.time, true}};
        });
    }
}

} // namespace

Shot plausibleShot(Scene scene, std::uint32_t seed, std::int64_t time) {
    Random random{seed * std::uint64_t{31} + static_cast<std::uint64_t>(static_cast<std::uint32_t>(scene))};
    Shot shot;
    shot.time = time;
    const bool night = scene == Scene::city || scene == Scene::stars;
    const bool close = scene == Scene::flower || scene == Scene::stillLife || scene == Scene::silhouette;
    if (night) {
        shot.model = "K1";
        shot.lens = "KL 20mm F1.8";
        shot.focalLength = 20;
        shot.iso = scene == Scene::stars ? 3200 : 1600;
        shot.fNumber = {18, 10};
        shot.exposure =
            scene == Scene::stars ? TiffDirectory::Rational{13, 1} : TiffDirectory::Rational{1, 30};
    } else if (close) {
        shot.model = "K1";
        shot.lens = "KL 90mm F2.8 Macro";
        shot.focalLength = 90;
        shot.iso = 100 << random.integer(0, 2);
        shot.fNumber = {28, 10};
        shot.exposure = {1, 50 * random.integer(2, 16)};
    } else {
        shot.model = random.chance(0.7F) ? "K1" : "K5 Compact";
        shot.focalLength = random.integer(24, 70);
        shot.iso = 100 * random.integer(1, 4);
        shot.fNumber = {random.chance(0.5F) ? 8 : 11, 1};
        shot.exposure = {1, 10 * random.integer(3, 50)};
    }
    if (random.chance(0.4F)) shot.bias = {random.integer(-3, 3), 3};
    if (random.chance(0.5F))
        shot.position =
            Shot::Position{random.uniform(-50, 60), random.uniform(-120, 150), random.uniform(2, 2400)};
    return shot;
}

std::vector<CardJob> photoJobs(double scale) {
    std::vector<CardJob> jobs;
    int number = 412;
    for (const Frame& frame : frames()) {
        jobs.emplace_back([frame, number, scale] { return FrameJob{frame, number, scale}(); });
        number += FrameJob::numbersOf(frame.form);
    }
    addOrientations(jobs, scale);
    addVariants(jobs, scale);
    addNames(jobs, scale);
    return jobs;
}

} // namespace kelvara::samplecard
