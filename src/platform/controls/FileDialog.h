// The common file dialog: a control that remembers the name it last gave.
#pragma once

#include <QString>

#include <functional>

namespace controls {

class FileDialog
{
public:
    void setDefaultExt(const QString& extension) { m_extension = extension; }
    /// One pattern such as "*.sql".
    void setFilter(const QString& pattern) { m_pattern = pattern; }
    /// What the last answered dialog gave; a cancelled one leaves it.
    [[nodiscard]] const QString& FileName() const { return m_fileName; }
    void ShowOpen() { show(false); }
    void ShowSave() { show(true); }

private:
    void show(bool save);

    QString m_extension;
    QString m_pattern;
    QString m_fileName;
};

/// Answers a dialog with a name, or with "" for a cancel.
using FileDialogAnswerer = std::function<QString(bool save, const QString& pattern)>;

/// Puts a script in the user's place; an empty function gives the user the place back.
void setFileDialogAnswerer(FileDialogAnswerer answerer);

} // namespace controls
