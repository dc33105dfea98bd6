// The three lists of the file system: drives, folders, files. They show this machine in the form of paths
// that the server uses: "C:\folder", where a system without drive letters has the one drive C: for its root.
#pragma once

#include "platform/basic/RuntimeError.h"
#include "platform/controls/ComboBox.h"

#include <QListWidget>
#include <QString>
#include <QTreeWidget>

namespace controls {

/// The path of this machine for a path in the server's form, and back; the latter without a last backslash
/// but for a root.
[[nodiscard]] QString localPath(const QString& path);
[[nodiscard]] QString shownPath(const QString& local);

/// The drives of this machine.
class DriveList : public ComboBox
{
    Q_OBJECT

public:
    explicit DriveList(QWidget* parent = nullptr);

    /// As "C:".
    [[nodiscard]] QString Drive() const { return Text(); }

signals:
    /// The user has chosen a drive, be it the same again.
    void Change();
};

/// The folder at hand below its ancestors and above its folders. A click chooses, a double click and Enter
/// open. Hidden folders, and names that no path in this form can hold, are left out.
class FolderList : public QListWidget
{
    Q_OBJECT

public:
    explicit FolderList(QWidget* parent = nullptr);

    [[nodiscard]] const QString& Path() const { return m_path; }
    /// Opens a folder; a drive alone is its root. Fires Change unless it is the one at hand.
    /// @throws basic::RuntimeError 76 for no folder, 75 for one that can't be read; the list stays
    void setPath(const QString& path);
    /// Of the chosen entry: -1 the folder at hand, -2 and below its ancestors, from 0 on its folders.
    [[nodiscard]] int ListIndex() const { return currentRow() - m_ancestors; }
    /// The path of an entry. Error 9 outside the list.
    [[nodiscard]] QString List(int index) const;

signals:
    void Change();
    void Click();
    /// The user tried to open an entry, and could not.
    void OpenFailed(const basic::RuntimeError& error);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void open(const QListWidgetItem* item);
    void fill();

    QString m_path;
    int m_ancestors = 0;
};

/// The files of one folder by their names, with size and date; hidden ones are left out.
class FileList : public QTreeWidget
{
    Q_OBJECT

public:
    explicit FileList(QWidget* parent = nullptr);

    [[nodiscard]] const QString& Path() const { return m_path; }
    /// @throws basic::RuntimeError 76, 75 as FolderList
    void setPath(const QString& path);
    /// -1 when none is chosen.
    [[nodiscard]] int ListIndex() const { return indexOfTopLevelItem(currentItem()); }
    /// Name of a file. Error 9 outside the list.
    [[nodiscard]] QString List(int index) const;

signals:
    void Click();

private:
    QString m_path;
};

} // namespace controls
