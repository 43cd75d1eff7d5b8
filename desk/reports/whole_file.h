// A file that appears whole or not at all.
#pragma once

#include <QSaveFile>
#include <QString>

#include <string_view>

// Written beside its place, without a name where the system can, and put there by finish(). What
// was there before stays until then, and for ever if finish() is not called or fails.
class WholeFile {
public:
    // A name that leads to something other than a file is refused.
    explicit WholeFile(const QString& path);

    const QString& path() const { return path_; }
    bool isOpened() const { return file_.isOpen(); }
    // Appends UTF-8. Once something could not be written nothing more is.
    void write(std::string_view text);
    // Whether everything was written so far.
    bool isFine() const { return isFine_; }
    // Whether all of it is in its place.
    bool finish();

private:
    QString path_;
    QSaveFile file_;
    bool isFine_ = true;
};
