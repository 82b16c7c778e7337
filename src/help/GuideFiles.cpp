#include "help/GuideFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace guide {

bool WritePages(const QString& folder, const std::vector<Page>& pages, QString* error) {
    const QDir dir(folder);
    for (const Page& page : pages) {
        QSaveFile file(dir.filePath(page.file));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Text) ||
            file.write(page.text.toUtf8()) < 0 || !file.commit()) {
            if (error)
                *error =
                    QStringLiteral("The user guide page %1 could not be written: %2")
                        .arg(QDir::toNativeSeparators(dir.filePath(page.file)), file.errorString());
            return false;
        }
    }
    return true;
}

bool SavePicture(const QString& folder, const QString& name, const QImage& picture,
                 QString* error) {
    const QString path = QDir(folder).filePath(name);
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || picture.isNull()) {
        if (error)
            *error = QStringLiteral("The user guide picture %1 could not be made.")
                         .arg(QDir::toNativeSeparators(path));
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit()) {
        if (error)
            *error = QStringLiteral("The user guide picture %1 could not be written: %2")
                         .arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    return true;
}

QSize PictureSizeOnDisk(const QString& folder, const QString& pageFile) {
    QFile file(QDir(folder).filePath(PictureName(pageFile)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return PngSize(file.read(24));
}

}  // namespace guide
