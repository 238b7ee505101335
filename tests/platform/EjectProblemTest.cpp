#include "platform/linux/EjectProblem.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(EjectProblemTest, aBusyDiskIsNamedWithItsReason) {
    const auto* error = "org.freedesktop.UDisks2.Error.DeviceBusy";
    EXPECT_EQ(
        ejectProblem(error, "Error unmounting /dev/sdb1: target is busy", "KELVA_CARD"),
        "“KELVA_CARD” is in use by another program (target is busy). Close what uses it and try again.");
    EXPECT_EQ(ejectProblem(error, "", "KELVA_CARD"),
              "“KELVA_CARD” is in use by another program. Close what uses it and try again.");
}

TEST(EjectProblemTest, everyErrorBecomesASentence) {
    const auto sentence = [](const std::string& error, std::string_view message = "technical") {
        return ejectProblem(error, message, "CARD");
    };
    EXPECT_EQ(sentence("org.freedesktop.UDisks2.Error.NotAuthorizedCanObtain"),
              "You don't have permission to eject it.");
    EXPECT_EQ(sentence("org.freedesktop.UDisks2.Error.NotAuthorizedDismissed"),
              "Permission to eject it was not given.");
    EXPECT_EQ(sentence("org.freedesktop.DBus.Error.NoReply"),
              "The system's disk service didn't answer in time.");
    EXPECT_EQ(sentence("org.freedesktop.DBus.Error.ServiceUnknown"), diskServiceIsMissing());
    EXPECT_EQ(sentence("org.freedesktop.DBus.Error.Spawn.ChildExited"), diskServiceIsMissing());
    EXPECT_EQ(sentence("org.freedesktop.DBus.Error.UnknownObject"),
              "It was removed before it could be ejected.");
    EXPECT_EQ(
        sentence("org.freedesktop.UDisks2.Error.Failed", "Error ejecting /dev/sdb: Input/output error.\n"),
        "Input/output error.");
    EXPECT_EQ(sentence("org.freedesktop.UDisks2.Error.Failed", ""),
              "The system's disk service gave no reason.");
}

} // namespace
} // namespace kelvara
