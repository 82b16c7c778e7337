// What one run stores the next run finds: the cross-fader curve is restored
// at start-up (the real program, twice, on the same settings folder).
#include <gtest/gtest.h>

#include <QFileInfo>

#include "app/MixoraChild.h"

TEST(StartupRestores, TheCrossFaderCurveComesBack) {
    ASSERT_TRUE(QFileInfo::exists(MIXORA_BINARY_DIR "/mixora"));
    testsupport::MixoraChild child;
    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=set-curve"}));
    ASSERT_TRUE(child.Wait(30000));
    EXPECT_EQ(child.ExitCode(), 0);
    // The first run starts from the default, -1.
    EXPECT_TRUE(child.Log().contains("cross-fader curve -1.00"));

    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=close-mixer"}));
    ASSERT_TRUE(child.Wait(30000));
    EXPECT_EQ(child.ExitCode(), 0);
    EXPECT_TRUE(child.Log().contains("cross-fader curve 0.50"))
        << child.Log().join('\n').toStdString();
}
