// Every working window of the decks and mixers registers each control it
// shows: built offscreen and shown, each visible control that takes input
// (buttons, slides, knobs, graphs, lists) is in its window's registry, in a
// record the tool tips and the user guide can use.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QSet>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiControl.h"
#include "controls/CNiGraph.h"
#include "controls/CNiKnob.h"
#include "controls/CNiSlide.h"
#include "core/ComponentRows.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"

using testsupport::MessageLog;

namespace {

// The windows of a running program: both decks with their information and
// equalizer windows, the main mixer and the headphones mixer.
struct Windows {
    MessageLog host;
    std::unique_ptr<CRynHeadphonesMixer> phones;
    std::unique_ptr<CRynMainMixer> mixer;
    std::unique_ptr<CRynDeckInfo> infos[2];
    std::unique_ptr<CRynEqualizer> equalizers[2];
    std::unique_ptr<CRynDeck> decks[2];

    Windows() {
        ResetEngineStateForTest();
        Engine().mainDialogWindow = host.Handle();
        phones = std::make_unique<CRynHeadphonesMixer>();
        mixer = std::make_unique<CRynMainMixer>();
        for (int d = 0; d < 2; ++d) {
            decks[d] = std::make_unique<CRynDeck>();
            infos[d] = std::make_unique<CRynDeckInfo>();
            infos[d]->Initialise(decks[d]->Handle(), d);
            equalizers[d] = std::make_unique<CRynEqualizer>();
            equalizers[d]->Initialise(d, decks[d]->Handle());
            decks[d]->Initialise(infos[d].get(), equalizers[d].get(), nullptr, mixer->Handle(), d);
        }
        mixer->Initialise(host.Handle(), decks[0].get(), decks[1].get(), phones.get(), nullptr);
        phones->Initialise(mixer->Handle());
    }
    ~Windows() {
        for (auto& d : decks)
            d->Shutdown();
        for (auto& d : decks)
            d.reset();
        mixer.reset();
        ResetEngineStateForTest();
    }
};

bool TakesInput(QWidget* w) {
    if (w->testAttribute(Qt::WA_TransparentForMouseEvents))
        return false;  // a picture
    return qobject_cast<CNiControl*>(w) || qobject_cast<QComboBox*>(w) ||
           qobject_cast<QAbstractButton*>(w) || qobject_cast<QLineEdit*>(w) ||
           qobject_cast<QAbstractSlider*>(w);
}

// The checks every window's registry passes; `name` ("Deck A ") starts every
// title of a window that belongs to one deck.
void ExpectComplete(CRynWindow& window, const QString& name) {
    SCOPED_TRACE(window.ClassName() + std::string(" ") + name.toStdString());
    window.show();
    QApplication::processEvents();
    const ComponentRegistry& r = window.Registry();
    ASSERT_GT(r.Count(), 0);
    EXPECT_LE(r.Count(), ComponentRegistry::kMaxComponents);

    QSet<QWidget*> registered;
    for (int k = 0; k < r.Count(); ++k) {
        SCOPED_TRACE(r.Title(k).toStdString());
        QWidget* c = r.Control(k);
        ASSERT_NE(c, nullptr);
        EXPECT_FALSE(registered.contains(c)) << "registered twice";
        registered.insert(c);
        EXPECT_TRUE(r.Title(k).endsWith(':'));
        EXPECT_TRUE(r.Title(k).startsWith(name));
        EXPECT_FALSE(r.Label(k).isEmpty());
        EXPECT_GT(r.Description(k).size(), 20);
        EXPECT_TRUE(r.Description(k).endsWith('.') || r.Description(k).endsWith(".)"));
        EXPECT_EQ(c->toolTip(), r.Label(k));
        if (k > 0 && r.Title(k) == r.Title(k - 1)) {
            EXPECT_EQ(r.Description(k), r.Description(k - 1)) << "one section, two texts";
        }
        const ComponentRegistry::Place p = r.Placed(k);
        EXPECT_GE(p.x, 0.0f);
        EXPECT_GE(p.y, 0.0f);
        EXPECT_LE(p.x + p.width, 1.0001f);
        EXPECT_LE(p.y + p.height, 1.0001f);
        if (c->isVisibleTo(&window)) {
            EXPECT_GT(p.width, 0.0f);
            EXPECT_GT(p.height, 0.0f);
        }
    }
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (!w->isVisibleTo(&window) || !TakesInput(w))
            continue;
        bool inside = false;  // a part of a registered control (a list's button)
        for (QWidget* a = w; a && a != &window; a = a->parentWidget())
            inside = inside || registered.contains(a);
        EXPECT_TRUE(inside) << "not registered: " << w->metaObject()->className() << " "
                            << w->objectName().toStdString() << " " << w->toolTip().toStdString();
    }
    window.hide();
}

}  // namespace

TEST(WindowRegistries, EveryShownControlIsRegistered) {
    Windows w;
    for (int d = 0; d < 2; ++d) {
        const QString name = QStringLiteral("Deck %1 ").arg(QChar('A' + d));
        ExpectComplete(*w.decks[d], name);
        ExpectComplete(*w.infos[d], name);
        ExpectComplete(*w.equalizers[d], name);
    }
    ExpectComplete(*w.mixer, QString());
    ExpectComplete(*w.phones, QString());
}

TEST(WindowRegistries, TheEqualizerRegistersEveryBandCountAndType) {
    Windows w;
    CRynEqualizer& eq = *w.equalizers[1];
    for (int n : {2, 3, 6, 12}) {
        SCOPED_TRACE(n);
        eq.ChooseBandCount(n);
        ASSERT_TRUE(testsupport::WaitFor([&] { return eq.BandCount() == n; }));
        ExpectComplete(eq, QStringLiteral("Deck B "));
    }
    eq.SetEqualizerType(CRynEqualizer::EqType::Device);
    ExpectComplete(eq, QStringLiteral("Deck B "));
}

TEST(WindowRegistries, RegisteringAgainRewritesTheRows) {
    CRynDeckInfo info;
    info.Initialise(0, 1);
    const int count = info.Registry().Count();
    EXPECT_TRUE(info.Registry().Title(0).startsWith("Deck B "));
    info.Initialise(0, 0);
    EXPECT_EQ(info.Registry().Count(), count);
    EXPECT_TRUE(info.Registry().Title(0).startsWith("Deck A "));
    EXPECT_EQ(info.ForwardGraph()->toolTip(), info.Registry().Label(0));

    // A window with rows of its own: a second pass rewrites in place.
    QWidget window;
    auto* a = new QWidget(&window);
    ComponentRegistry registry;
    {
        ComponentRows rows(registry, &window);
        rows.Add(a, "One:", "First.", "one");
    }
    {
        ComponentRows rows(registry, &window);
        rows.Add(a, "Two:", "Second.", "two");
    }
    EXPECT_EQ(registry.Count(), 1);
    EXPECT_EQ(registry.Title(0), "Two:");
    EXPECT_EQ(a->toolTip(), "two");
}

TEST(WindowRegistries, DeckToolTipsNameTheDecksKeys) {
    Windows w;
    const DeckTempoPanel& a = w.decks[0]->Tempo();
    EXPECT_TRUE(a.TempoSlide()->toolTip().contains("'Q', 'W', 'E' and 'R'"));
    EXPECT_TRUE(a.SpindleSlide()->toolTip().contains("'F' and 'V'"));
    EXPECT_TRUE(a.UpButton()->toolTip().contains("'Shift-F'"));
    EXPECT_TRUE(a.DownButton()->toolTip().contains("'Shift-V'"));
    const DeckTempoPanel& b = w.decks[1]->Tempo();
    EXPECT_TRUE(b.TempoSlide()->toolTip().contains("'U', 'I', 'O' and 'P'"));
    EXPECT_TRUE(b.SpindleSlide()->toolTip().contains("'J' and 'M'"));
    EXPECT_TRUE(b.UpButton()->toolTip().contains("'Shift-J'"));
    EXPECT_TRUE(b.DownButton()->toolTip().contains("'Shift-M'"));

    // The descriptions name the transport keys of each deck.
    auto description = [](CRynWindow& window, const QString& title) {
        const ComponentRegistry& r = window.Registry();
        for (int k = 0; k < r.Count(); ++k)
            if (r.Title(k) == title)
                return r.Description(k);
        return QString();
    };
    EXPECT_TRUE(description(*w.decks[0], "Deck A Eject:").contains("Ctrl+A"));
    EXPECT_TRUE(description(*w.decks[1], "Deck B Eject:").contains("Ctrl+J"));
    EXPECT_TRUE(description(*w.decks[1], "Deck B Drop/Lift Needle:").contains("Ctrl+L"));
    EXPECT_TRUE(description(*w.equalizers[1], "Deck B EQ Band Levels:").contains("'K' and ','"));
    EXPECT_TRUE(description(*w.mixer, "Main Cross Fader:").contains("'N'"));
    EXPECT_TRUE(description(*w.phones, "Headphones Volume:").contains("Ctrl+'Page Up'"));
}
