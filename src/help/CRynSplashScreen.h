// The splash window of the start-up: a frameless picture on top of the other
// windows, centred on the screen's work area, hidden again when its time is
// up. The picture is drawn by the program (SplashPicture).
#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>

class CRynSplashScreen : public QWidget {
    Q_OBJECT
  public:
    explicit CRynSplashScreen(QWidget* parent = nullptr);

    // Shows `picture` for `milliseconds`, centred on `area` (the primary
    // screen's work area when empty). False when the picture is empty.
    bool Create(int milliseconds, const QPixmap& picture, QWidget* parent,
                const QRect& area = QRect());
    bool Created() const { return created_; }

    // The program's splash picture, 400 x 300.
    static QPixmap SplashPicture();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QPixmap picture_;
    QTimer timer_;
    bool created_ = false;
};
