#include "views/Theme.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

#include <algorithm>

namespace kelvara {

namespace {

QColor grey(int level) { return {level, level, level}; }

Theme darkTheme() {
    return {
        .appearance = Theme::Appearance::dark,
        .canvas = grey(0x1a),
        .window = grey(0x26),
        .panel = grey(0x21),
        .popover = grey(0x2e),
        .raised = grey(0x3a),
        .raisedHover = grey(0x46),
        .raisedPress = grey(0x30),
        .field = grey(0x17),
        .selection = grey(0x42),
        .placeholder = grey(0x24),
        .separator = grey(0x10),
        .border = grey(0x4a),
        .text = grey(0xea),
        .secondaryText = grey(0xa6),
        .tertiaryText = grey(0x70),
        .accent = {0x5c, 0xa8, 0xff},
        .accentFill = {0x2a, 0x72, 0xd6},
        .accentHover = {0x3a, 0x82, 0xe6},
        .onAccent = grey(0xff),
        .mark = {0x3d, 0xc9, 0x6c},
        .star = {0xf4, 0xb9, 0x42},
        .danger = {0xff, 0x6b, 0x61},
        .dangerFill = {0xcf, 0x36, 0x2e},
        .dangerHover = {0xdb, 0x44, 0x3b},
        .warning = {0xf7, 0xb1, 0x4a},
        .focusRing = {0x5c, 0xa8, 0xff},
        .overlay = {0, 0, 0, 0xb0},
        .onOverlay = grey(0xf4),
        .shadow = {0, 0, 0, 0x78},
    };
}

Theme lightTheme() {
    return {
        .appearance = Theme::Appearance::light,
        .canvas = grey(0xe6),
        .window = grey(0xf6),
        .panel = grey(0xee),
        .popover = grey(0xfc),
        .raised = grey(0xe3),
        .raisedHover = grey(0xd9),
        .raisedPress = grey(0xcf),
        .field = grey(0xe7),
        .selection = grey(0xd8),
        .placeholder = grey(0xda),
        .separator = grey(0xcf),
        .border = grey(0xc0),
        .text = grey(0x1c),
        .secondaryText = grey(0x5a),
        .tertiaryText = grey(0x94),
        .accent = {0x1b, 0x6a, 0xd4},
        .accentFill = {0x1f, 0x6f, 0xd9},
        .accentHover = {0x17, 0x62, 0xc4},
        .onAccent = grey(0xff),
        .mark = {0x18, 0x92, 0x45},
        .star = {0xd1, 0x86, 0x00},
        .danger = {0xcc, 0x2f, 0x26},
        .dangerFill = {0xcc, 0x2f, 0x26},
        .dangerHover = {0xb8, 0x27, 0x1f},
        .warning = {0xb8, 0x6a, 0x00},
        .focusRing = {0x1f, 0x6f, 0xd9},
        .overlay = {0, 0, 0, 0xb0},
        .onOverlay = grey(0xf4),
        .shadow = {0, 0, 0, 0x38},
    };
}

Theme& theme() {
    static Theme current = darkTheme();
    return current;
}

QFont baseFont() {
    // The desktop's font, before this application replaced it.
    static const QFont desktop = QGuiApplication::font();
    QFont base = desktop;
    static const bool hasInter = QFontDatabase::hasFamily(QStringLiteral("Inter"));
    if (hasInter) base.setFamilies({QStringLiteral("Inter"), desktop.family()});
    base.setHintingPreference(QFont::PreferNoHinting);
    base.setPixelSize(std::max(13, QFontInfo{desktop}.pixelSize()));
    return base;
}

} // namespace

const Theme& Theme::current() { return theme(); }

void Theme::setCurrent(Appearance appearance) { theme() = make(appearance); }

Theme Theme::make(Appearance appearance) {
    return appearance == Appearance::dark ? darkTheme() : lightTheme();
}

QFont font(TextRole role) {
    auto result = baseFont();
    const auto body = result.pixelSize();
    switch (role) {
    case TextRole::title:
        result.setPixelSize(body + 5);
        result.setWeight(QFont::DemiBold);
        break;
    case TextRole::headline:
        result.setPixelSize(body + 2);
        result.setWeight(QFont::DemiBold);
        break;
    case TextRole::body:
        break;
    case TextRole::emphasis:
        result.setWeight(QFont::DemiBold);
        break;
    case TextRole::caption:
        result.setPixelSize(body - 1);
        break;
    case TextRole::detail:
        result.setPixelSize(body - 2);
        break;
    case TextRole::section:
        result.setPixelSize(body - 2);
        result.setWeight(QFont::DemiBold);
        break;
    case TextRole::badge:
        result.setPixelSize(body - 3);
        result.setWeight(QFont::DemiBold);
        break;
    }
    return result;
}

} // namespace kelvara
