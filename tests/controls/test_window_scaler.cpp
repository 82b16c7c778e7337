// Controls following their window's size: a window of fixed-size controls
// in nested layouts, made smaller than its controls' natural room, scales
// them, their fonts and the layouts' gaps down together so that every
// control stays inside; made large again, they come back to their natural
// sizes.
#include <gtest/gtest.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <memory>

#include "controls/WindowScaler.h"

namespace {

struct Window {
    std::unique_ptr<QWidget> top = std::make_unique<QWidget>();
    QPushButton* fixed = nullptr;
    QLabel* caption = nullptr;
    QWidget* wide = nullptr;

    Window() {
        auto* v = new QVBoxLayout(top.get());
        v->setContentsMargins(10, 10, 10, 10);
        v->setSpacing(8);
        auto* row = new QHBoxLayout;
        row->setSpacing(6);
        fixed = new QPushButton(QStringLiteral("start"), top.get());
        fixed->setFixedSize(120, 40);
        row->addWidget(fixed);
        wide = new QWidget(top.get());
        wide->setMinimumSize(300, 200);
        row->addWidget(wide);
        v->addLayout(row);
        auto* grid = new QGridLayout;
        grid->setHorizontalSpacing(12);
        caption = new QLabel(QStringLiteral("cross fader"), top.get());
        QFont f = caption->font();
        f.setPointSizeF(12);
        caption->setFont(f);
        grid->addWidget(caption, 0, 0);
        v->addLayout(grid);
        WindowScaler::Attach(top.get());
        top->resize(600, 400);
        top->show();
    }

    // Every control wholly inside the window's client area.
    bool AllInside() const {
        for (QWidget* c : top->findChildren<QWidget*>()) {
            const QRect r(c->mapTo(top.get(), QPoint(0, 0)), c->size());
            if (c->isVisible() && !top->rect().contains(r))
                return false;
        }
        return true;
    }
};

void Settle(Window& w) {
    WindowScaler::Attach(w.top.get())->Fit();
    w.top->layout()->activate();
}

}  // namespace

TEST(WindowScaler, ControlsShrinkWithTheWindowAndComeBack) {
    Window w;
    WindowScaler* scaler = WindowScaler::Attach(w.top.get());
    EXPECT_EQ(WindowScaler::Attach(w.top.get()), scaler);  // one per window
    Settle(w);
    EXPECT_DOUBLE_EQ(scaler->Scale(), 1.0);
    EXPECT_EQ(w.fixed->size(), QSize(120, 40));

    // Half the natural room: everything at about half its size, all inside.
    w.top->resize(230, 160);
    Settle(w);
    EXPECT_EQ(w.top->size(), QSize(230, 160));  // the window takes its size
    EXPECT_LT(scaler->Scale(), 0.75);
    EXPECT_GE(scaler->Scale(), WindowScaler::kSmallest);
    EXPECT_LT(w.fixed->width(), 90);
    EXPECT_LT(w.caption->font().pointSizeF(), 9.5);
    EXPECT_EQ(w.top->layout()->contentsMargins().left(),
              static_cast<int>(std::lround(10 * scaler->Scale())));
    EXPECT_TRUE(w.AllInside());

    // Room again: natural sizes, fonts and gaps.
    w.top->resize(700, 500);
    Settle(w);
    EXPECT_DOUBLE_EQ(scaler->Scale(), 1.0);
    EXPECT_EQ(w.fixed->size(), QSize(120, 40));
    EXPECT_DOUBLE_EQ(w.caption->font().pointSizeF(), 12.0);
    EXPECT_EQ(w.top->layout()->contentsMargins().left(), 10);
    EXPECT_TRUE(w.AllInside());
}

TEST(WindowScaler, ControlsAddedLaterScaleFromTheirNaturalSize) {
    Window w;
    w.top->resize(230, 160);
    Settle(w);
    const double s = WindowScaler::Attach(w.top.get())->Scale();
    ASSERT_LT(s, 1.0);
    auto* later = new QPushButton(QStringLiteral("later"), w.top.get());
    later->setFixedSize(100, 30);
    static_cast<QVBoxLayout*>(w.top->layout())->addWidget(later);
    w.top->resize(231, 160);
    Settle(w);
    const double now = WindowScaler::Attach(w.top.get())->Scale();
    EXPECT_NEAR(later->width(), 100 * now, 1.0);
    EXPECT_TRUE(w.AllInside());
}

TEST(WindowScaler, NeverBelowTheSmallestScale) {
    Window w;
    w.top->resize(40, 30);
    Settle(w);
    EXPECT_DOUBLE_EQ(WindowScaler::Attach(w.top.get())->Scale(), WindowScaler::kSmallest);
    EXPECT_EQ(w.fixed->width(), 48);  // 120 × 0.4
}
