#include "playlist/window/CRynCEdit.h"

#include <QKeyEvent>

CRynCEdit::CRynCEdit(WindowHandle window, QWidget* parent) : QLineEdit(parent), window_(window) {}

void CRynCEdit::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        PostAppMessageRetry(window_, UWM_SEARCH_ENTER, 0, 0);
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}
