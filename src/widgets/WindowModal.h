#pragma once

class QDialog;

// Runs a dialog that the caller waits for, modal to its parent's window only: the main
// window waits, but the alarm windows (windows of their own) stay answerable.
int ExecWindowModal(QDialog& dialog);
