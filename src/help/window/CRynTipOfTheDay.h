// "Tip Of The Day": a small modeless window with one hint a start. Each
// ShowNextTip shows the tip at the stored "tipOfTheDayIndex" (clamped into
// the tips) and stores the index of the next one; "Show Tips At Startup"
// stores "showTipOfTheDay"; the next-tip button shows the next tip on a left
// press; "OK" closes the window. The host creates it at start-up only while
// "showTipOfTheDay" is on. User-interface thread only.
#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

class CRynTipOfTheDay : public QDialog {
    Q_OBJECT
  public:
    explicit CRynTipOfTheDay(QWidget* parent = nullptr);

    // Checks "Show Tips At Startup", titles the window and shows the next
    // tip (the window itself is shown by the caller).
    void Initialise();
    void ShowNextTip();

    int CurrentIndex() const { return index_; }
    QString TipShown() const;
    QCheckBox* ShowAtStartupBox() const { return showAtStartup_; }
    QPushButton* NextTipButton() const { return next_; }
    QPushButton* OkButton() const { return ok_; }

  private:
    int index_ = 0;
    QLabel* text_ = nullptr;
    QCheckBox* showAtStartup_ = nullptr;
    QPushButton* next_ = nullptr;
    QPushButton* ok_ = nullptr;
};
