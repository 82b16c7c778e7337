#include "app/VirtualKeys.h"

#include <Qt>

int VirtualKeyFromQt(int k) {
    if (k >= Qt::Key_A && k <= Qt::Key_Z)
        return k;  // Qt uses ASCII for these
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        return k;
    if (k >= Qt::Key_F1 && k <= Qt::Key_F12)
        return 112 + (k - Qt::Key_F1);
    switch (k) {
        case Qt::Key_Escape:
            return 27;
        case Qt::Key_Space:
            return 32;
        case Qt::Key_PageUp:
            return 33;
        case Qt::Key_PageDown:
            return 34;
        case Qt::Key_End:
            return 35;
        case Qt::Key_Home:
            return 36;
        case Qt::Key_Left:
            return 37;
        case Qt::Key_Up:
            return 38;
        case Qt::Key_Right:
            return 39;
        case Qt::Key_Down:
            return 40;
        case Qt::Key_Shift:
            return 16;
        case Qt::Key_Control:
            return 17;
        case Qt::Key_Semicolon:
        case Qt::Key_Colon:
            return 0xBA;
        case Qt::Key_Comma:
        case Qt::Key_Less:
            return 0xBC;
        case Qt::Key_Period:
        case Qt::Key_Greater:
            return 0xBE;
        case Qt::Key_Slash:
        case Qt::Key_Question:
            return 0xBF;
        // Shifted digits on a US keyboard arrive as their symbols.
        case Qt::Key_Exclam:
            return '1';
        case Qt::Key_At:
            return '2';
        case Qt::Key_NumberSign:
            return '3';
        case Qt::Key_Dollar:
            return '4';
        case Qt::Key_Percent:
            return '5';
        case Qt::Key_AsciiCircum:
            return '6';
        case Qt::Key_Ampersand:
            return '7';
        case Qt::Key_Asterisk:
            return '8';
        case Qt::Key_ParenLeft:
            return '9';
        case Qt::Key_ParenRight:
            return '0';
        default:
            return 0;
    }
}

long long KeyMessageParam(unsigned scanCode, bool autoRepeat, bool release, bool ctrl, bool shift) {
    long long p = 1;
    p |= static_cast<long long>(scanCode & 0xFF) << 16;
    if (autoRepeat || release)
        p |= 1LL << 30;
    if (release)
        p |= 1LL << 31;
    if (ctrl)
        p |= kKeyParamCtrl;
    if (shift)
        p |= kKeyParamShift;
    return p;
}
