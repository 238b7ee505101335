#include "views/Inspector.h"

#include "views/Segments.h"
#include "views/Symbols.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace kelvara {

namespace {

constexpr int symbolSide = 40;

struct Tab {
    InspectorTab tab;
    const char* name;
    QStringView symbol;
    const char* help;
    const char* absence; ///< What stands where a tab has no content.
};

constexpr std::array<Tab, 3> tabs{
    {{InspectorTab::info, QT_TRANSLATE_NOOP("Inspector", "Info"), u"info.circle",
      QT_TRANSLATE_NOOP("Inspector", "Show / hide info (I)"),
      QT_TRANSLATE_NOOP("Inspector", "This version can't show information.")},
     {InspectorTab::edit, QT_TRANSLATE_NOOP("Inspector", "Edit"), u"slider.horizontal.3",
      QT_TRANSLATE_NOOP("Inspector", "Show / hide edit (E)"),
      QT_TRANSLATE_NOOP("Inspector", "This version can't adjust photos yet.")},
     {InspectorTab::presets, QT_TRANSLATE_NOOP("Inspector", "Presets"), u"camera.filters",
      QT_TRANSLATE_NOOP("Inspector", "Show / hide presets (P)"),
      QT_TRANSLATE_NOOP("Inspector", "This version can't show presets yet.")}}};

QString translated(const char* source) { return QCoreApplication::translate("Inspector", source); }

/// A symbol over a sentence, in the middle of the panel.
class Absence : public QWidget {
public:
    explicit Absence(const Tab& tab) : m_tab{tab}, m_symbol{new QLabel{this}} {
        auto* sentence = makeLabel(TextRole::body, Tone::quiet, this, translated(tab.absence));
        sentence->setWordWrap(true);
        sentence->setAlignment(Qt::AlignCenter);
        auto* column = new QVBoxLayout{this};
        column->setContentsMargins(spacing::huge, 0, spacing::huge, 0);
        column->setSpacing(spacing::medium);
        column->addStretch(5);
        column->addWidget(m_symbol, 0, Qt::AlignHCenter);
        column->addWidget(sentence);
        column->addStretch(6);
        showSymbol();
    }

protected:
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange) showSymbol();
    }

private:
    void showSymbol() {
        m_symbol->setPixmap(
            symbol(m_tab.symbol, symbolSide, Theme::current().tertiaryText, devicePixelRatioF()));
    }

    const Tab& m_tab;
    QLabel* m_symbol;
};

} // namespace

Inspector::Inspector(LibraryViewModel& library, const Contents& contents, QWidget* parent)
    : Panel{&Theme::panel, parent}, m_library{library} {
    auto* tabRow = makeTabs(); // first, for the keyboard goes from the tabs to what they show
    setMinimumWidth(tabRow->minimumSizeHint().width()); // of whole names
    auto* pages = new QWidget{this};
    m_pages = new QStackedLayout{pages};
    m_pages->setContentsMargins({});
    const std::array widgets{contents.info, contents.edit, contents.presets};
    for (std::size_t i = 0; i < tabs.size(); ++i)
        m_pages->addWidget(widgets[i] ? widgets[i] : new Absence{tabs[i]});

    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(tabRow);
    column->addWidget(pages, 1);
    m_subscription = m_library.observe({LibraryProperty::inspectorTab}, [this](const auto&) { refresh(); });
    refresh();
}

QWidget* Inspector::makeTabs() {
    auto* row = new QWidget{this};
    auto* segments = new Segments{row};
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        const auto& [tab, name, symbolName, help, absence] = tabs[i];
        auto* button = makeIconButton(symbolName, translated(name), {}, segments);
        button->setText(translated(name));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setFont(kelvara::font(TextRole::caption));
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setSymbol(*button, symbolIcon(symbolName, &Theme::text), 15);
        connect(button, &QToolButton::clicked, this, [this, tab = tab] {
            if (m_library.inspectorTab() != tab) m_library.toggleInspector(tab);
        });
        segments->add(button);
        m_tabs[i] = button;
    }
    auto* layout = new QHBoxLayout{row};
    layout->setContentsMargins(spacing::medium, spacing::small, spacing::medium, spacing::small);
    layout->addWidget(segments);
    return row;
}

void Inspector::refresh() {
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        if (tabs[i].tab != m_library.inspectorTab()) continue;
        m_tabs[i]->setChecked(true);
        m_pages->setCurrentIndex(static_cast<int>(i));
    }
}

InspectorToggles::InspectorToggles(LibraryViewModel& library, QWidget* parent)
    : QWidget{parent}, m_library{library} {
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins({});
    row->setSpacing(spacing::hair);
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        const auto& [tab, name, symbolName, help, absence] = tabs[i];
        auto* button = makeIconButton(symbolName, translated(name), translated(help), this);
        button->setIcon(symbolIcon(symbolName, &Theme::text, &Theme::accent));
        button->setCheckable(true);
        connect(button, &QToolButton::clicked, this, [this, tab = tab] {
            m_library.toggleInspector(tab);
            refresh();
        });
        row->addWidget(button);
        m_buttons[i] = button;
    }
    using P = LibraryProperty;
    m_subscription =
        m_library.observe({P::showsInspector, P::inspectorTab}, [this](const auto&) { refresh(); });
    refresh();
}

void InspectorToggles::refresh() {
    for (std::size_t i = 0; i < tabs.size(); ++i)
        m_buttons[i]->setChecked(m_library.showsInspector() && m_library.inspectorTab() == tabs[i].tab);
}

} // namespace kelvara
