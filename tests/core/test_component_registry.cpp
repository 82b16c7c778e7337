// The registry keeps the first 100 registrations in order, gives each control
// its label as tool tip, and measures a laid-out control's place as fractions
// of its window that follow the window's size; a hidden control measures zero.
#include <gtest/gtest.h>

#include <QPushButton>
#include <memory>
#include <vector>

#include "core/ComponentRegistry.h"

TEST(ComponentRegistry, KeepsTheFirstHundredInOrderWithTheirToolTips) {
    ComponentRegistry r;
    std::vector<std::unique_ptr<QPushButton>> buttons;
    for (int i = 0; i < 105; ++i) {
        buttons.push_back(std::make_unique<QPushButton>());
        r.SetTitle(r.Count(), QStringLiteral("Item %1:").arg(i));
        r.SetDescription(r.Count(), QStringLiteral("Does %1.").arg(i));
        r.SetLabel(r.Count(), QStringLiteral("item %1").arg(i));
        r.AddComponent(buttons.back().get(), 0.1f, 0.2f, 0.3f, 0.4f);
    }
    EXPECT_EQ(r.Count(), 100);
    EXPECT_EQ(r.Title(99), QStringLiteral("Item 99:"));
    EXPECT_EQ(r.Description(0), QStringLiteral("Does 0."));
    EXPECT_EQ(buttons[42]->toolTip(), QStringLiteral("item 42"));
    EXPECT_TRUE(buttons[100]->toolTip().isEmpty());
    EXPECT_FLOAT_EQ(r.Placed(3).height, 0.4f);
    EXPECT_EQ(r.Placed(100).width, 0.0f);
}

TEST(ComponentRegistry, MeasuresAControlOverItsWindowAndFollowsItsSize) {
    QWidget window;
    window.resize(400, 300);
    auto* b = new QPushButton(&window);
    b->setGeometry(344, 0, 56, 54);
    auto* hidden = new QPushButton(&window);
    hidden->hide();
    ComponentRegistry r;
    r.Register(b, &window, QStringLiteral("Delete Item:"), QStringLiteral("Deletes."),
               QStringLiteral("delete item"));
    r.Register(hidden, &window, QStringLiteral("Hidden:"), QString(), QString());
    window.show();
    ComponentRegistry::Place p = r.Placed(0);
    EXPECT_FLOAT_EQ(p.x, 0.86f);
    EXPECT_FLOAT_EQ(p.y, 0.0f);
    EXPECT_FLOAT_EQ(p.width, 0.14f);
    EXPECT_FLOAT_EQ(p.height, 0.18f);
    EXPECT_EQ(b->toolTip(), QStringLiteral("delete item"));
    EXPECT_EQ(r.Placed(1).width, 0.0f);
    window.resize(800, 300);
    EXPECT_FLOAT_EQ(r.Placed(0).x, 0.43f);
}
