// The 3D graph window (template 129): the 3D spectrum plot and the 3D sound
// listener. Shell for now; the plot comes with the 3D graph itself.
#pragma once

#include "core/CRynWindow.h"

class CRyn3DGraph : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 129;

    explicit CRyn3DGraph(QWidget* parent = nullptr);

    void Initialise(WindowHandle mainMixer);
    WindowHandle MainMixer() const { return mainMixer_; }

  protected:
    // The close box hides the window and tells the main mixer.
    void closeEvent(QCloseEvent* event) override;

  private:
    WindowHandle mainMixer_ = 0;
};
