#include "app/CopyActivity.h"

#include "library/LibraryFixture.h"
#include "platform/Notifier.h"
#include "platform/ProgressIndicator.h"
#include "platform/SleepInhibitor.h"

namespace kelvara {
namespace {

class CopyActivityTest : public LibraryFixture,
                         public ProgressIndicator,
                         public SleepInhibitor,
                         public Notifier {
protected:
    void show(double share) override { m_shares.push_back(share); }
    void hide() override { m_shares.clear(); }
    void hold(const std::string&) override { ++m_locks; }
    void release() override { --m_locks; }
    void notify(const Notification& notification) override { m_notifications.push_back(notification); }

    void copy(std::string_view folder) {
        m_library->chooseCopyDestination();
        m_chooser.answer(FolderChooser::Choice{m_card / folder, false});
        m_library->startCopy();
        EXPECT_EQ(m_shares, std::vector<double>{0});
        EXPECT_EQ(m_locks, 1);
        settle();
        EXPECT_TRUE(m_shares.empty());
        EXPECT_EQ(m_locks, 0);
        m_library->dismissCopy();
    }

    std::vector<double> m_shares;
    int m_locks = 0;
    std::vector<Notification> m_notifications;
};

TEST_F(CopyActivityTest, everyEndOfACopyIsTheEndOfItsTraces) {
    m_card.write("card/a.jpg", "12345678");
    auto& library = start(m_card / "card");
    bool isInFront = false;
    const CopyActivity activity{library, *this, *this, *this, [&] { return isInFront; }};
    library.toggleChecked(m_card / "card/a.jpg");
    copy("kept");
    copy("kept");
    copy("card/inside");
    isInFront = true;
    copy("kept");
    EXPECT_EQ(m_notifications,
              (std::vector<Notification>{
                  {"Copy Complete", "1 copied"},
                  {"Copy Complete", "0 copied · 1 already there"},
                  {"Couldn't Start Copy", "Choose a destination outside the folder you're copying from."}}));
}

TEST_F(CopyActivityTest, leavesNoTraceWhenTheApplicationEndsDuringACopy) {
    m_card.write("card/a.jpg", "12345678");
    auto& library = start(m_card / "card");
    library.toggleChecked(m_card / "card/a.jpg");
    {
        const CopyActivity activity{library, *this, *this, *this, [] { return true; }};
        library.startCopy();
        m_chooser.answer(FolderChooser::Choice{m_card / "kept", false});
        EXPECT_EQ(m_locks, 1);
    }
    EXPECT_EQ(m_locks, 0);
    EXPECT_TRUE(m_shares.empty());
}

} // namespace
} // namespace kelvara
