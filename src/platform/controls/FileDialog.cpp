#include "platform/controls/FileDialog.h"

#include "platform/controls/Language.h"
#include "platform/controls/Pointer.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace controls {

namespace {

FileDialogAnswerer& scriptedFile()
{
    static FileDialogAnswerer answerer;
    return answerer;
}

QString ask(bool save, const QString& pattern, const QString& extension, const QString& last)
{
    if (scriptedFile())
        return scriptedFile()(save, pattern);
    QFileDialog dialog(QApplication::activeWindow());
    dialog.setWindowTitle(save ? uiText("Guardar", "Save") : uiText("Abrir", "Open"));
    dialog.setNameFilter(pattern);
    dialog.setDefaultSuffix(extension);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (!last.isEmpty())
        dialog.setDirectory(QFileInfo(last).absolutePath());
    const ArrowWhileAsking arrow;
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace

void FileDialog::show(bool save)
{
    const QString chosen = ask(save, m_pattern, m_extension, m_fileName);
    if (!chosen.isEmpty())
        m_fileName = chosen;
}

void setFileDialogAnswerer(FileDialogAnswerer answerer)
{
    scriptedFile() = std::move(answerer);
}

} // namespace controls
