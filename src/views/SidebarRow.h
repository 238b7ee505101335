#pragma once

#include <QAbstractButton>
#include <QString>

class QToolButton;

namespace kelvara {

class BusyIndicator;

/// A source in the sidebar: a symbol, a name, and a quieter second line.
class SidebarRow : public QAbstractButton {
    Q_OBJECT

public:
    SidebarRow(const QString& symbolName, const QString& name, const QString& detail,
               QWidget* parent = nullptr);

    /// Whether it is the source that is open.
    void setCurrent(bool current);
    [[nodiscard]] bool isCurrent() const { return m_isCurrent; }
    [[nodiscard]] QString detail() const { return m_detail; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// Room at the right that texts leave free.
    [[nodiscard]] virtual int trailingWidth() const { return 0; }

private:
    QString m_symbolName;
    QString m_detail;
    bool m_isCurrent = false;
};

/// A volume, with a button that ejects it.
class VolumeRow : public SidebarRow {
    Q_OBJECT

public:
    VolumeRow(const QString& symbolName, const QString& name, const QString& detail, bool canEject,
              QWidget* parent = nullptr);

    /// While it is being ejected the button gives way to a sign of progress.
    void setEjecting(bool ejecting);

signals:
    void ejectRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;
    [[nodiscard]] int trailingWidth() const override;

private:
    QToolButton* m_eject = nullptr;
    BusyIndicator* m_busy = nullptr;
};

} // namespace kelvara
