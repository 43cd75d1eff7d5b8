#include "reports/whole_file.h"

#include <QFileInfo>

WholeFile::WholeFile(const QString& path) : path_(path), file_(path) {
    const QFileInfo info(path);
    const bool isInTheWay = info.exists() && !info.isFile();
    isFine_ = !isInTheWay && file_.open(QIODevice::WriteOnly);
}

void WholeFile::write(std::string_view text) {
    const auto size = static_cast<qint64>(text.size());
    isFine_ = isFine_ && file_.write(text.data(), size) == size;
}

// What is still collected is written before: commit() would not tell that it could not be.
bool WholeFile::finish() {
    isFine_ = isFine_ && file_.flush() && file_.commit();
    return isFine_;
}
