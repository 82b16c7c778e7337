// A small round lamp painted in the host's shutdown progress window: dark
// green when off, bright green when lit.
#pragma once

#include <QWidget>

class ProgressLamp : public QWidget {
    Q_OBJECT
  public:
    explicit ProgressLamp(QWidget* parent = nullptr);

    void SetLit(bool lit);
    bool Lit() const { return lit_; }

    QSize sizeHint() const override { return {18, 18}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool lit_ = false;
};
