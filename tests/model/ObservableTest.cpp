#include "model/Observable.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

enum class Colour { red, green, blue, count };

class Paint : public Observable<Colour> {
public:
    void setRed(int value) { assign(Colour::red, m_red, value); }
    void setAll(int value) {
        const Change change{*this};
        setRed(value);
        assign(Colour::green, m_green, value);
        assign(Colour::blue, m_blue, value);
    }
    [[nodiscard]] int sum() const { return m_red + m_green + m_blue; }

private:
    int m_red = 0;
    int m_green = 0;
    int m_blue = 0;
};

TEST(ObservableTest, tellsOncePerChangeAndOnlyWhoReadsIt) {
    Paint paint;
    int redCalls = 0;
    int blueCalls = 0;
    int seenSum = 0;
    const auto red = paint.observe({Colour::red, Colour::green}, [&](const auto& changed) {
        ++redCalls;
        seenSum = paint.sum();
        EXPECT_TRUE(changed.contains(Colour::red));
    });
    const auto blue = paint.observe({Colour::blue}, [&](const auto&) { ++blueCalls; });
    paint.setRed(1);
    EXPECT_EQ(redCalls, 1);
    EXPECT_EQ(blueCalls, 0);
    paint.setAll(2);
    EXPECT_EQ(redCalls, 2);
    EXPECT_EQ(blueCalls, 1);
    EXPECT_EQ(seenSum, 6) << "the observer saw a half-changed state";
    paint.setAll(2);
    EXPECT_EQ(redCalls, 2) << "nothing changed";
}

TEST(ObservableTest, anObserverMayChangeTheStateAndEndSubscriptions) {
    Paint paint;
    int calls = 0;
    Subscription second;
    const auto first = paint.observe({Colour::red}, [&](const auto&) {
        second = {};
        if (paint.sum() < 3) paint.setRed(paint.sum() + 1);
    });
    second = paint.observe({Colour::red}, [&](const auto&) { ++calls; });
    paint.setRed(1);
    EXPECT_EQ(paint.sum(), 3);
    EXPECT_EQ(calls, 0);
}

} // namespace
} // namespace kelvara
