#include "app/CopyActivity.h"

#include "library/LibraryViewModel.h"
#include "platform/Notifier.h"
#include "platform/ProgressIndicator.h"
#include "platform/SleepInhibitor.h"
#include "views/CopyTexts.h"
#include "views/Text.h"

#include <QCoreApplication>
#include <QStringList>

#include <utility>

namespace kelvara {

namespace {
struct CopyActivityTexts {
    Q_DECLARE_TR_FUNCTIONS(CopyActivity)
};
QString tr(const char* source) { return CopyActivityTexts::tr(source); }
} // namespace

CopyActivity::CopyActivity(LibraryViewModel& library, ProgressIndicator& indicator, SleepInhibitor& sleep,
                           Notifier& notifier, std::function<bool()> isInFront)
    : m_library{library}, m_indicator{indicator}, m_sleep{sleep}, m_notifier{notifier}, m_isInFront{std::move(
                                                                                            isInFront)} {
    m_subscription = m_library.observe({LibraryProperty::copyState}, [this](const auto&) { refresh(); });
}

CopyActivity::~CopyActivity() {
    if (m_isCopying) end();
}

void CopyActivity::refresh() {
    const auto wasCopying = std::exchange(m_isCopying, m_library.isCopying());
    if (const auto* progress = std::get_if<CopyService::Progress>(&m_library.copyState())) {
        const auto isExport = m_library.copyExport().has_value();
        const auto reason = isExport ? tr("Photos are being exported") : tr("Photos are being copied");
        if (!wasCopying) m_sleep.hold(utf8(reason));
        m_indicator.show(completedShare(*progress));
    } else if (wasCopying) {
        end();
        if (!m_isInFront()) tellEnd();
    }
}

void CopyActivity::end() {
    m_indicator.hide();
    m_sleep.release();
}

void CopyActivity::tellEnd() {
    const auto& state = m_library.copyState();
    if (const auto* report = std::get_if<CopyService::Report>(&state)) {
        QStringList counts;
        for (const auto& row : copyReportRows(*report, copyKind(m_library))) counts.append(row.count);
        const auto title = copyReportTitle(*report, !m_library.copyInterruption().empty());
        m_notifier.notify({utf8(title), utf8(counts.join(QStringLiteral(" · ")))});
    } else if (const auto* failed = std::get_if<CopyFailed>(&state)) {
        m_notifier.notify({utf8(tr("Couldn't Start Copy")), failed->message});
    }
}

} // namespace kelvara
