// The CDDB server the disc names come from, as the user sets it: host, port,
// the user's address sent with each query and the time-out in seconds, kept
// in the settings. Opened by a right click on the play list's name button in
// CD mode.
#pragma once

#include <QDialog>

class QLineEdit;
class QSpinBox;

class CddbServerDialog : public QDialog {
    Q_OBJECT
  public:
    // Filled from the settings.
    explicit CddbServerDialog(QWidget* parent = nullptr);

    // Stores the fields in the settings (an empty host or address keeps the
    // stored one).
    void Store();

    QLineEdit* HostField() const { return host_; }
    QSpinBox* PortField() const { return port_; }
    QLineEdit* AddressField() const { return address_; }
    QSpinBox* TimeoutField() const { return timeout_; }

  private:
    QLineEdit* host_ = nullptr;
    QSpinBox* port_ = nullptr;
    QLineEdit* address_ = nullptr;
    QSpinBox* timeout_ = nullptr;
};
