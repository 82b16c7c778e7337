// The about box: the program's name, version and purpose under its icon, and
// "OK". Opened modally from the "&AboutMixora ..." menu item.
#pragma once

#include <QDialog>

class CAboutDlg : public QDialog {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 100;
    explicit CAboutDlg(QWidget* parent = nullptr);
};
