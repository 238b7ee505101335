#include "views/AboutView.h"

#include "views/Controls.h"

#include <QApplication>
#include <QGridLayout>
#include <QVBoxLayout>

#include <array>

namespace kelvara {

namespace {

constexpr int iconSide = 88;

struct Library {
    const char* name;
    const char* work;
    const char* licence;
};
constexpr std::array libraries{
    Library{"Qt", QT_TRANSLATE_NOOP("kelvara::AboutView", "windows, icons, video"), "LGPL 3"},
    Library{"LibRaw", QT_TRANSLATE_NOOP("kelvara::AboutView", "RAW photos"), "LGPL 2.1, CDDL 1.0"},
    Library{"libjpeg-turbo", QT_TRANSLATE_NOOP("kelvara::AboutView", "JPEG photos"), "IJG, BSD"},
    Library{"libheif", QT_TRANSLATE_NOOP("kelvara::AboutView", "HEIF photos"), "LGPL 3"},
    Library{"FFmpeg", QT_TRANSLATE_NOOP("kelvara::AboutView", "posters of videos"), "LGPL 2.1, GPL 2"},
    Library{"Exiv2", QT_TRANSLATE_NOOP("kelvara::AboutView", "metadata"), "GPL 2"},
    Library{"Little CMS", QT_TRANSLATE_NOOP("kelvara::AboutView", "colour profiles"), "MIT"},
    Library{"ICU", QT_TRANSLATE_NOOP("kelvara::AboutView", "the order of names"), "Unicode"},
    Library{"Expat", QT_TRANSLATE_NOOP("kelvara::AboutView", "XMP sidecars"), "MIT"},
    Library{"{fmt}", QT_TRANSLATE_NOOP("kelvara::AboutView", "texts"), "MIT"},
};

QFrame* makeHairline(QWidget* parent) {
    auto* line = new QFrame{parent};
    line->setObjectName(QStringLiteral("hairline"));
    line->setFixedHeight(1);
    return line;
}

} // namespace

AboutView::AboutView(QWidget* mainWindow) : SideWindow{tr("About Kelvara"), mainWindow} {
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(spacing::huge + 4, spacing::huge, spacing::huge + 4, spacing::huge);
    column->setSpacing(spacing::large);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(makeHeader());
    column->addWidget(makeHairline(this));
    auto* licence = makeLabel(TextRole::body, Tone::normal, this,
                              tr("Free software under the GNU General Public License, version 3 or later.\n"
                                 "It comes with no warranty."));
    column->addWidget(licence);
    column->addWidget(makeHairline(this));
    column->addWidget(makeCredits());
}

QWidget* AboutView::makeHeader() {
    auto* header = new QWidget{this};
    auto* icon = new QLabel{header};
    icon->setPixmap(QApplication::windowIcon().pixmap({iconSide, iconSide}, devicePixelRatioF()));
    icon->setFixedSize(iconSide, iconSide);
    auto* version = makeLabel(TextRole::body, Tone::quiet, header,
                              tr("Version %1").arg(QCoreApplication::applicationVersion()));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* grid = new QGridLayout{header};
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(spacing::huge - 4);
    grid->setVerticalSpacing(spacing::hair);
    grid->addWidget(icon, 0, 0, 5, 1);
    grid->setRowStretch(0, 1);
    grid->addWidget(makeLabel(TextRole::title, Tone::normal, header, QStringLiteral("Kelvara")), 1, 1);
    grid->addWidget(version, 2, 1);
    grid->addWidget(
        makeLabel(TextRole::body, Tone::normal, header,
                  tr("Goes through a memory card's photos,\nmarks the keepers, copies them safely.")),
        3, 1);
    grid->setRowStretch(4, 1);
    grid->setColumnStretch(1, 1);
    return header;
}

QWidget* AboutView::makeCredits() {
    auto* credits = new QWidget{this};
    auto* grid = new QGridLayout{credits};
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(spacing::huge);
    grid->setVerticalSpacing(spacing::tiny);
    grid->setColumnStretch(1, 1);
    grid->addWidget(makeLabel(TextRole::emphasis, Tone::normal, credits, tr("With thanks to")), 0, 0, 1, 3);
    int row = 1;
    for (const auto& library : libraries) {
        const auto cell = [&](const QString& words, Tone tone, int place) {
            grid->addWidget(makeLabel(TextRole::caption, tone, credits, words), row, place);
        };
        cell(QString::fromUtf8(library.name), Tone::normal, 0);
        cell(tr(library.work), Tone::quiet, 1);
        cell(QString::fromUtf8(library.licence), Tone::quiet, 2);
        ++row;
    }
    return credits;
}

} // namespace kelvara
