#include "platform/controls/FileLists.h"

#include "platform/controls/Language.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>

using namespace Qt::Literals::StringLiterals;

namespace controls {

namespace {

constexpr int pathRole = Qt::UserRole;

bool hasDriveLetters()
{
    return !QDir::rootPath().startsWith(u'/');
}

/// @throws basic::RuntimeError 76, 75
QDir readableFolder(const QString& path)
{
    const QDir folder(localPath(path));
    if (!folder.exists())
        basic::raise(basic::error::PathNotFound);
    if (!QFileInfo(folder.path()).isReadable() || !QFileInfo(folder.path()).isExecutable())
        basic::raise(basic::error::PathFileAccess);
    return folder;
}

/// Names as they stand on disk: one that is not of the system's encoding reads as another, which isn't there.
QStringList namesIn(const QDir& folder, QDir::Filters kind)
{
    QStringList names = folder.entryList(kind | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase);
    names.removeIf([&](const QString& name) {
        return (!hasDriveLetters() && name.contains(u'\\')) || !folder.exists(name);
    });
    return names;
}

void prepare(QListWidget* list)
{
    list->setUniformItemSizes(true);
    list->setTextElideMode(Qt::ElideNone);
    list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

QString joined(const QString& folder, const QString& name)
{
    return folder.endsWith(u'\\') ? folder + name : folder + u'\\' + name;
}

} // namespace

QString localPath(const QString& path)
{
    QString local = path;
    local.replace(u'\\', u'/');
    const bool driveAlone = local.size() == 2 && local.endsWith(u':');
    if (driveAlone)
        local += u'/';
    if (!hasDriveLetters() && local.size() >= 2 && local[1] == u':')
        local.remove(0, 2);
    return local;
}

QString shownPath(const QString& local)
{
    QString path = QDir::cleanPath(local);
    if (!hasDriveLetters())
        path.prepend(u"C:"_s);
    return path.replace(u'/', u'\\');
}

DriveList::DriveList(QWidget* parent) : ComboBox(parent)
{
    if (hasDriveLetters())
        for (const QFileInfo& drive : QDir::drives())
            AddItem(drive.path().left(2));
    else
        AddItem(u"C:"_s);
    setCurrentIndex(std::max(0, findText(shownPath(QDir::currentPath()).left(2))));
    connect(this, &QComboBox::activated, this, &DriveList::Change);
}

FolderList::FolderList(QWidget* parent) : QListWidget(parent)
{
    prepare(this);
    connect(this, &QListWidget::itemClicked, this, &FolderList::Click);
    connect(this, &QListWidget::itemDoubleClicked, this, &FolderList::open);
    m_path = shownPath(QDir::currentPath());
    fill();
}

void FolderList::setPath(const QString& path)
{
    const QString wanted = shownPath(readableFolder(path).absolutePath());
    const bool another = wanted != m_path;
    m_path = wanted;
    fill();
    if (another)
        emit Change();
}

QString FolderList::List(int index) const
{
    const QListWidgetItem* entry = item(index + m_ancestors);
    if (!entry)
        basic::raise(basic::error::Subscript);
    return entry->data(pathRole).toString();
}

void FolderList::fill()
{
    clear();
    constexpr qsizetype indentation = 2;                 // blanks a level
    const QIcon closed(u":/icons/CarpetaCerrada.svg"_s); // each of its own would be read from the file again
    const auto add = [&](const QString& name, const QString& path, int depth) {
        auto* entry = new QListWidgetItem(closed, QString(depth * indentation, u' ') + name);
        entry->setData(pathRole, path);
        entry->setData(Qt::AccessibleTextRole, path);
        addItem(entry);
    };
    const QStringList parts = m_path.split(u'\\', Qt::SkipEmptyParts);
    QString path;
    for (int depth = 0; depth < parts.size(); ++depth) {
        path = depth == 0 ? parts[0] + u'\\' : joined(path, parts[depth]);
        add(depth == 0 ? path : parts[depth], path, depth);
    }
    m_ancestors = count();
    for (const QString& name : namesIn(QDir(localPath(m_path)), QDir::Dirs))
        add(name, joined(m_path, name), m_ancestors);
    setCurrentRow(m_ancestors - 1);
    scrollToItem(currentItem());
}

void FolderList::open(const QListWidgetItem* item)
{
    if (!item)
        return;
    try {
        setPath(item->data(pathRole).toString());
    } catch (const basic::RuntimeError& error) {
        emit OpenFailed(error);
    }
}

void FolderList::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return open(currentItem());
    const int before = currentRow();
    QListWidget::keyPressEvent(event);
    if (currentRow() != before)
        emit Click();
}

FileList::FileList(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(3);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    connect(this, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* now) {
        if (now)
            emit Click();
    });
}

void FileList::setPath(const QString& path)
{
    const QDir folder = readableFolder(path);
    m_path = shownPath(folder.absolutePath());
    const QSignalBlocker filling(this);
    clear();
    setHeaderLabels({uiText("Nombre", "Name"), uiText("Tamaño", "Size"), uiText("Fecha", "Date")});
    QList<QTreeWidgetItem*> items;
    for (const QString& name : namesIn(folder, QDir::Files)) {
        const QFileInfo file(folder.filePath(name));
        items += new QTreeWidgetItem({name, locale().formattedDataSize(file.size()),
                                      locale().toString(file.lastModified(), QLocale::ShortFormat)});
        items.last()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        items.last()->setToolTip(0, joined(m_path, name));
    }
    addTopLevelItems(items);
    setCurrentItem(nullptr);
    for (int column = 0; column < columnCount(); ++column)
        resizeColumnToContents(column);
}

QString FileList::List(int index) const
{
    const QTreeWidgetItem* entry = topLevelItem(index);
    if (!entry)
        basic::raise(basic::error::Subscript);
    return entry->text(0);
}

} // namespace controls
