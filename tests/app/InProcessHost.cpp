#include "InProcessHost.h"

#include "app/CMixoraDlg.h"
#include "core/EngineState.h"
#include "platform/PlatformLayers.h"

namespace testsupport {

namespace {

class WorkingLayers : public PlatformLayers {
  public:
    bool InitialiseSound(QString*) override { return true; }
    void ReleaseSound() override {}
    bool CheckMedia(QString*) override { return true; }
};

}  // namespace

std::unique_ptr<CMixoraDlg> StartInProcessHost() {
    qputenv("MIXORA_SOUND_DEVICE", "null");
    ResetEngineStateForTest();
    CMixoraDlg::Options o;
    o.layers = std::make_unique<WorkingLayers>();
    o.pauseMs = 0;
    o.onEnd = [](int) {};
    o.showError = [](const QString&) {};
    auto host = std::make_unique<CMixoraDlg>(std::move(o));
    if (!host->StartUp())
        return nullptr;
    return host;
}

}  // namespace testsupport
