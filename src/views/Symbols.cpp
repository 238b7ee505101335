#include "views/Symbols.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>
#include <utility>

// A static library's resources are registered by hand. Outside the namespace, as the macro demands.
static void registerSymbols() { Q_INIT_RESOURCE(symbols); }

namespace kelvara {

namespace {

constexpr int largePoints = 40;

struct SymbolKey {
    QString name;
    int points = 0;
    int pixels = 0;
    QRgb color = 0;
    friend bool operator==(const SymbolKey&, const SymbolKey&) = default;
};
std::size_t qHash(const SymbolKey& key, std::size_t seed) {
    return qHashMulti(seed, key.name, key.points, key.pixels, key.color);
}

QString folder() {
    static const bool isRegistered = (registerSymbols(), true);
    Q_UNUSED(isRegistered)
    return QStringLiteral(":/symbols/");
}

/// In the drawings black is ink and white cuts out what lies under it.
QImage inked(QImage drawing, const QColor& color) {
    const auto [red, green, blue] = std::tuple{color.red(), color.green(), color.blue()};
    for (int y = 0; y < drawing.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(drawing.scanLine(y));
        for (int x = 0; x < drawing.width(); ++x) {
            const auto ink = (qAlpha(line[x]) - qRed(line[x])) * color.alpha() / 255;
            line[x] = qPremultiply(qRgba(red, green, blue, ink));
        }
    }
    return drawing;
}

QPixmap render(const SymbolKey& key) {
    QFile file{folder() + key.name + QStringLiteral(".svg")};
    if (!file.open(QIODevice::ReadOnly)) return {};
    auto source = file.readAll();
    // Large, the usual stroke would shout.
    if (key.points >= largePoints) source.replace("stroke-width=\"1.75\"", "stroke-width=\"1.25\"");
    QSvgRenderer renderer{source};
    if (!renderer.isValid()) return {};
    QImage drawing{key.pixels, key.pixels, QImage::Format_ARGB32_Premultiplied};
    drawing.fill(Qt::transparent);
    QPainter painter{&drawing};
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    return QPixmap::fromImage(inked(std::move(drawing), QColor::fromRgba(key.color)));
}

/// At the left of a place that is wider, and in the middle of one that is higher.
QPixmap padded(const QPixmap& symbol, const QSize& size) {
    if (symbol.isNull() || symbol.size() == size) return symbol;
    QPixmap result{size};
    result.fill(Qt::transparent);
    QPainter painter{&result};
    auto source = symbol;
    source.setDevicePixelRatio(1);
    painter.drawPixmap(0, (size.height() - symbol.height()) / 2, source);
    painter.end();
    result.setDevicePixelRatio(symbol.devicePixelRatio());
    return result;
}

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(QString name, std::function<QColor(QIcon::Mode, QIcon::State)> color)
        : m_name{std::move(name)}, m_color{std::move(color)} {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const auto ratio = painter->device() ? painter->device()->devicePixelRatio() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override {
        auto color = m_color(mode, state);
        if (mode == QIcon::Disabled) color.setAlphaF(color.alphaF() * 0.4F);
        const auto points = static_cast<int>(std::lround(std::min(size.width(), size.height()) / scale));
        return padded(symbol(m_name, points, color, scale), size);
    }

    QIconEngine* clone() const override { return new SymbolEngine{*this}; }
    bool isNull() override { return false; }

private:
    QString m_name;
    std::function<QColor(QIcon::Mode, QIcon::State)> m_color;
};

} // namespace

QPixmap symbol(QStringView name, int points, const QColor& color, qreal devicePixelRatio) {
    static QHash<SymbolKey, QPixmap> cache;
    const SymbolKey key{name.toString(), points, static_cast<int>(std::ceil(points * devicePixelRatio)),
                        color.rgba()};
    auto found = cache.constFind(key);
    if (found == cache.constEnd()) {
        // Few sizes and colours are ever in use; a change of theme is what could let them pile up.
        if (cache.size() > 400) cache.clear();
        found = cache.insert(key, render(key));
    }
    auto result = *found;
    result.setDevicePixelRatio(devicePixelRatio);
    return result;
}

QIcon symbolIcon(QStringView name, const QColor& color) {
    return QIcon{new SymbolEngine{name.toString(), [color](auto, auto) { return color; }}};
}

QIcon symbolIcon(QStringView name, QColor Theme::*color, QColor Theme::*onColor) {
    return QIcon{new SymbolEngine{name.toString(), [=](auto, QIcon::State state) {
                                      const auto& theme = Theme::current();
                                      return state == QIcon::On && onColor ? theme.*onColor : theme.*color;
                                  }}};
}

QIcon menuIcon(QStringView name) {
    return QIcon{new SymbolEngine{name.toString(), [](QIcon::Mode mode, auto) {
                                      const auto& theme = Theme::current();
                                      return mode == QIcon::Active ? theme.onAccent : theme.text;
                                  }}};
}

QStringList symbolNames() {
    auto names = QDir{folder()}.entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name);
    for (auto& name : names) name.chop(4);
    return names;
}

} // namespace kelvara
