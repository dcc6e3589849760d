#include "widgets/WindowModal.h"

#include <QDialog>

int ExecWindowModal(QDialog& dialog)
{
    // Window-modal blocks the dialog's parent window and that window's own parents; a window
    // of its own (an alarm window) is none of those. A dialog without a parent blocks nothing.
    dialog.setWindowModality(Qt::WindowModal);
    return dialog.exec();
}
