#include "qyx_files.h"

#include "qyx_messages.h"

#include <QProcess>
#include <QRandomGenerator>

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <new>
#include <string>
#include <system_error>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <csignal>
#endif

bool flag_SaveListFile = false;
bool flag_ShowOnScreen = false;
bool flag_ShowInputFileLines = false;
bool flag_ShowCommentedLines = false;
bool flag_ShowMessages = false;
bool flag_ShowLinesNumber = false;
bool flag_SaveResFile = false;
bool flag_SaveErrFile = false;

std::unique_ptr<FileHandle> g_InputCodeFileHandle;
std::unique_ptr<FileHandle> g_OutputCodeFileHandle;
std::unique_ptr<FileHandle> g_OutputListFileHandle;
std::unique_ptr<FileHandle> g_OutputResFileHandle;
std::unique_ptr<FileHandle> g_OutputErrFileHandle;
QString g_OutputCodeFileName;
qint64 g_OutputCodeFileCurrentLineCount = 0;
std::vector<int> g_InputCodeFileLinesList;
int g_InputCodeFileLineCount = 0;
int g_InputCodeFileTmpLineCount = -1;

#ifdef Q_OS_WIN

bool FileId::isAt(const char*) const noexcept {
    return true;
}

bool FileId::isItselfAt(const char*) const noexcept {
    return true;
}

#else

bool FileId::isAt(const char* name) const noexcept {
    struct stat found = {};
    return stat(name, &found) == 0 && found.st_dev == device && found.st_ino == number;
}

bool FileId::isItselfAt(const char* name) const noexcept {
    struct stat found = {};
    return lstat(name, &found) == 0 && found.st_dev == device && found.st_ino == number;
}

#endif

namespace {

namespace fs = std::filesystem;

#ifndef Q_OS_WIN
// What the system tells of an open file; nothing if there is none.
struct stat StatusOf(int file) {
    struct stat status = {};
    fstat(file, &status);
    return status;
}
#endif

// The least room for bytes that are read, and how it grows where a file is larger than it tells.
constexpr qint64 READ_BLOCK_SIZE = 4096;
constexpr qint64 READ_GROWTH = 2;

// How much output a file collects before it is written.
constexpr std::size_t WRITE_BLOCK_SIZE = std::size_t{256} * 1024;

// Digits of a code line's number in the listing; larger numbers take more.
constexpr std::size_t LINE_NUMBER_WIDTH = 4;

// Qt crashes if there is no memory for what it makes with its first object. It is made before
// main, when no file is there yet.
const QFile firstQtObject;

// Names are the bytes that the user gave, each of them one character.
fs::path NativePath(const QString& name) {
#ifdef Q_OS_WIN
    return name.toStdWString();
#else
    return name.toLatin1().toStdString();
#endif
}

QString NameOf(const fs::path& path) {
#ifdef Q_OS_WIN
    return QString::fromStdWString(path.wstring());
#else
    return QString::fromLatin1(QByteArray::fromStdString(path.string()));
#endif
}

// The folder of a file.
fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// A name in the folder that nobody else has.
fs::path NewNameIn(const fs::path& folder) {
    constexpr int width = 16;
    constexpr int base = 16;
    const quint64 number = QRandomGenerator::system()->generate64();
    return folder /
           QStringLiteral(".yxstcmp-%1").arg(number, width, base, QLatin1Char('0')).toStdString();
}

// Want of memory is no property of a file.
void CheckMemory() {
    if (errno == ENOMEM) {
        throw std::bad_alloc();
    }
}

// Whether outputs may stand in the folder: those of devices and of the system's processes hold no
// files of users.
bool IsFolderForOutputs([[maybe_unused]] const fs::path& folder) {
#ifdef Q_OS_WIN
    return true;
#else
    constexpr decltype(statfs::f_type) processes = 0x9FA0;
    const fs::path devices = "/dev";
    struct statfs system = {};
    std::error_code error;
    return statfs(folder.c_str(), &system) == 0 && system.f_type != processes &&
           !fs::equivalent(folder, devices, error);
#endif
}

// Whether an old output may be moved: in a folder such as /tmp only the owners of file and folder
// may do so.
bool MayBeMoved([[maybe_unused]] const fs::path& path, [[maybe_unused]] const fs::path& folder) {
#ifdef Q_OS_WIN
    return true;
#else
    struct stat file = {};
    if (lstat(path.c_str(), &file) != 0) {
        return true;
    }
    struct stat parent = {};  // stays empty when the folder is gone
    stat(folder.c_str(), &parent);
    const uid_t user = geteuid();
    return (parent.st_mode & S_ISVTX) == 0 || user == 0 || user == file.st_uid ||
           user == parent.st_uid;
#endif
}

// What may be removed as an old output.
bool IsReplaceable(const fs::path& path) {
    std::error_code error;
    const fs::file_status entry = fs::symlink_status(path, error);
    return fs::is_regular_file(entry) || fs::is_symlink(entry);
}

bool IsFree(const fs::path& path) {
    std::error_code error;
    return fs::symlink_status(path, error).type() == fs::file_type::not_found;
}

// No signal ends the run while this lives: what was put into a folder for a moment is gone again.
class SignalsHeld {
public:
#ifndef Q_OS_WIN
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before_);
    }
    ~SignalsHeld() {
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }
#else
    SignalsHeld() = default;
    ~SignalsHeld() = default;
#endif
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
#ifndef Q_OS_WIN
    sigset_t before_ = {};
#endif
};

bool CanCreateIn(const fs::path& folder) {
    const fs::path path = NewNameIn(folder);
    const SignalsHeld held;
    std::FILE* const probe = std::fopen(path.string().c_str(), "wbx");
    if (probe == nullptr) {
        CheckMemory();
        return false;
    }
    std::fclose(probe);
    std::error_code error;
    return fs::remove(path, error);
}

// Gives a file its name back, unless another has taken that.
void PutBack(const fs::path& aside, const fs::path& path) {
#ifndef Q_OS_WIN
    if (renameat2(AT_FDCWD, aside.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0 ||
        errno == EEXIST) {
        return;
    }
#endif
    std::error_code error;
    fs::rename(aside, path, error);
}

// The names of the code file: its own until it is whole, and then that of the output.
std::string unfinishedName;
std::string finishedName;

// The code file for as long as the run can fail, under its name of the moment; null when there is
// none. The handler of a signal reads it.
std::atomic<const char*> doubtfulCodeFile = nullptr;
static_assert(std::atomic<const char*>::is_always_lock_free);

// What the code file is known by once its name is one that others may use too.
FileId codeFileId;

}  // namespace

// ---------------------------------------------------------------------------------------------
// FileHandle
// ---------------------------------------------------------------------------------------------

FileHandle::FileHandle(const QString& name, bool forReading) : QFile(name), name_(name) {
    if (forReading) {
        readAllText();
    } else {
        opened_ = openNew();
    }
}

std::unique_ptr<FileHandle> FileHandle::ofText(const QString& text) {
    std::unique_ptr<FileHandle> handle(new FileHandle);
    handle->setText(text);
    return handle;
}

std::unique_ptr<FileHandle> FileHandle::discarding() {
    std::unique_ptr<FileHandle> handle(new FileHandle);
    handle->setFileName(QProcess::nullDevice());
    handle->opened_ = handle->open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    return handle;
}

FileHandle::~FileHandle() {
    writeCollected();
}

#ifdef Q_OS_WIN

bool FileHandle::openForReading() {
    return open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool FileHandle::openNew() {
    return open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
}

#else

// Opening must not wait, as it could for ever on a pipe; what was opened tells whether it is one.
// A regular file that another holds for a moment, as servers of files do, is waited for.
bool FileHandle::openForReading() {
    const std::string name = NativePath(name_).string();
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
    int file = ::open(name.c_str(), flags | O_NONBLOCK);
    if (file < 0 && errno == EWOULDBLOCK) {
        const int held = ::open(name.c_str(), O_PATH | O_CLOEXEC);
        if (S_ISREG(StatusOf(held).st_mode)) {
            file = ::open(("/proc/self/fd/" + std::to_string(held)).c_str(), flags);
        }
        ::close(held);
    }
    return openNumber(file, QIODevice::ReadOnly);
}

bool FileHandle::openNew() {
    constexpr mode_t forAll = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    return openNumber(::open(NativePath(name_).c_str(), flags, forAll), QIODevice::WriteOnly);
}

// Takes over a file that was opened, if it was and is a regular one.
bool FileHandle::openNumber(int file, QIODevice::OpenMode mode) {
    if (file < 0 || !open(file, mode | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
        return false;
    }
    const struct stat status = StatusOf(file);
    id_ = {status.st_dev, status.st_ino};
    return S_ISREG(status.st_mode);
}

#endif

// All bytes up to the end, or one more than a source may have: the size that the file tells may
// be wrong.
QByteArray FileHandle::readBytes() {
    QByteArray bytes;
    qint64 count = 0;
    qint64 got = 0;
    do {
        count += got;
        if (count == bytes.size()) {
            const qint64 room = count == 0 ? size() + READ_BLOCK_SIZE : READ_GROWTH * count;
            bytes.resize(static_cast<int>(std::min(room, MAX_SOURCE_SIZE + 1)));
        }
        got = read(bytes.data() + count, bytes.size() - count);
    } while (got > 0);
    bytes.truncate(static_cast<int>(count));
    return bytes;
}

void FileHandle::readAllText() {
    if (!openForReading()) {
        return;
    }
    const QByteArray bytes = readBytes();
    opened_ = QFile::error() == QFileDevice::NoError && bytes.size() <= MAX_SOURCE_SIZE;
    close();
    if (opened_) {
        setText(SourceText(bytes));
    }
}

void FileHandle::setText(const QString& text) {
    opened_ = true;
    text_ = text;
    next_ = text_.constData();
    end_ = next_ + text_.size();
}

char* FileHandle::makeSpace(std::size_t size) {
    writeCollected();
    if (writeFailed_) {
        return nullptr;
    }
    if (static_cast<std::size_t>(bufferEnd_ - unused_) < size) {
        const std::size_t capacity = std::max(size, WRITE_BLOCK_SIZE);
        buffer_.reset(new char[capacity]);
        unused_ = buffer_.get();
        bufferEnd_ = unused_ + capacity;
    }
    return unused_;
}

void FileHandle::appendText(std::string_view utf8) {
    char* const space = reserve(utf8.size());
    if (space != nullptr) {
        commit(PutPart(space, utf8));
    }
}

void FileHandle::writeCollected() {
    const qint64 size = unused_ - buffer_.get();
    if (!writeFailed_ && size > 0 && write(buffer_.get(), size) != size) {
        writeFailed_ = true;
    }
    unused_ = buffer_.get();
}

bool FileHandle::finish() {
    writeCollected();
    close();
    opened_ = false;
    return !writeFailed_ && QFile::error() == QFileDevice::NoError;
}

// ---------------------------------------------------------------------------------------------
// Names on the command line
// ---------------------------------------------------------------------------------------------

bool FileExists(const QString& name) {
    std::error_code error;
    return fs::exists(NativePath(name), error);
}

bool FileCanExists(const QString& name) {
    const fs::path path = NativePath(name);
    const fs::path folder = FolderOf(path);
    const bool isUsable = path.has_filename() && (IsFree(path) || IsReplaceable(path));
    return isUsable && IsFolderForOutputs(folder) && MayBeMoved(path, folder) &&
           CanCreateIn(folder);
}

// The old file is put aside before it is removed. If the source is gone then, the two were one,
// which no comparison could tell (the same folder mounted twice), and it is put back. Nothing
// asks for memory meanwhile.
bool RemoveOldFile(const QString& name) {
    const fs::path path = NativePath(name);
    if (IsFree(path)) {
        return true;
    }
    const fs::path aside = NewNameIn(FolderOf(path));
    const fs::path source =
        NativePath(g_InputCodeFileHandle ? g_InputCodeFileHandle->name() : name);
    const bool hadSource = g_InputCodeFileHandle != nullptr;
    const SignalsHeld held;
    std::error_code error;
    fs::rename(path, aside, error);
    if (error) {
        // Another run may have taken it away at this instant.
        return error == std::errc::no_such_file_or_directory;
    }
    const bool isOther = !hadSource || fs::exists(source, error);
    if (isOther && IsReplaceable(aside) && fs::remove(aside, error)) {
        return true;
    }
    PutBack(aside, path);
    return false;
}

// ---------------------------------------------------------------------------------------------
// The source
// ---------------------------------------------------------------------------------------------

namespace {

// Notes where each line of the source begins. Text after the last line feed is a line too, even
// when it is empty.
void InitInputCodeFileParams(const QString& text) {
    g_InputCodeFileLinesList.assign(1, 0);
    int lineFeed = -1;
    while ((lineFeed = text.indexOf(QLatin1Char('\n'), lineFeed + 1)) >= 0) {
        g_InputCodeFileLinesList.push_back(lineFeed + 1);
    }
    g_InputCodeFileLineCount = static_cast<int>(g_InputCodeFileLinesList.size());
}

}  // namespace

// The decoder skips the byte order mark.
QString SourceText(QByteArray bytes) {
    if (std::memchr(bytes.constData(), '\r', static_cast<std::size_t>(bytes.size())) != nullptr) {
        bytes.replace('\r', QByteArray());
    }
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

void ReadInputCodeFile(const QString& name) {
    assert(!g_InputCodeFileHandle);
    g_InputCodeFileHandle = std::make_unique<FileHandle>(name, true);
}

bool IsInputCodeFileRead() {
    return g_InputCodeFileHandle->isOpened();
}

bool IsInputCodeFile(const QString& name) {
    const FileHandle& source = *g_InputCodeFileHandle;
    const fs::path path = NativePath(name);
    const fs::path sourcePath = NativePath(source.name());
    std::error_code error;
    return source.id().isAt(path.c_str()) || fs::equivalent(path, sourcePath, error);
}

// The line table and the scanner share one text, read once. The table is only needed for the
// echo.
void OpenInputCodeFile() {
    if (!IsInputCodeFileRead()) {
        Abort(TXT_OPEN_FAILED_ON_INPUT_FILE);
    }
    if (flag_ShowInputFileLines) {
        InitInputCodeFileParams(g_InputCodeFileHandle->text());
    }
}

void CloseInputCodeFile() {
    g_InputCodeFileHandle.reset();
    g_InputCodeFileLinesList.clear();
    g_InputCodeFileLineCount = 0;
}

int ReadCharFromInputCodeFile() {
    if (!g_InputCodeFileHandle) {
        Abort(TXT_PROBLEM_READING_INPUT_FILE);
    }
    return g_InputCodeFileHandle->getChar();
}

QString OutlineInputCodeString(QStringView text, int line) {
    if (text.isEmpty()) {
        return QString();
    }
    QString number;
    IntToStr(line + 1, number);
    return StringsToString(";", TXT_LINE, " ", number, ": \"", text, "\"");
}

// QUIRK(comments-always-echoed): -c promises to show comment lines, yet the echo shows comments
// with and without it: no code reads the option. Listings that are compared across versions
// rely on the echo.
QStringView RemoveComment(QStringView text) {
    return text;
}

InputCodeFileLineParams GetInputCodeFileCurrentLineParams(int line) {
    if (line >= g_InputCodeFileLineCount) {
        return {line, QString()};
    }
    const auto index = static_cast<std::size_t>(line);
    const bool isLast = line + 1 == g_InputCodeFileLineCount;
    const QStringView text = g_InputCodeFileHandle->text();
    const int begin = g_InputCodeFileLinesList[index];
    const qsizetype end = isLast ? text.size() : g_InputCodeFileLinesList[index + 1];
    const QStringView content = text.mid(begin, end - begin).trimmed();
    return {line, OutlineInputCodeString(RemoveComment(content), line)};
}

void EchoInputCodeCurrentLine() {
    g_InputCodeFileTmpLineCount = g_InputCodeFileCurrentLineCount;
    if (!flag_ShowInputFileLines) {
        return;
    }
    const QString echo = GetInputCodeFileCurrentLineParams(g_InputCodeFileCurrentLineCount).text;
    if (!echo.isEmpty()) {
        WriteLn(echo, WHAT_SOURCE_ECHO);
    }
}

// ---------------------------------------------------------------------------------------------
// Opening and closing
// ---------------------------------------------------------------------------------------------

namespace {

void CreateOutputFile(std::unique_ptr<FileHandle>& handle, const QString& name,
                      QLatin1String openFailed) {
    assert(!handle);
    handle = std::make_unique<FileHandle>(name, false);
    if (!handle->isOpened()) {
        Abort(openFailed, true);
    }
}

}  // namespace

void OpenOutputCodeFile(const QString& name) {
    g_OutputCodeFileName = name;
    unfinishedName = NewNameIn(FolderOf(NativePath(name))).string();
    const QString own = NameOf(unfinishedName);
    const SignalsHeld held;
    codeFileId = FileId();
    doubtfulCodeFile = unfinishedName.c_str();
    CreateOutputFile(g_OutputCodeFileHandle, own, TXT_OPEN_FAILED_ON_OUTPUT_FILE);
    codeFileId = g_OutputCodeFileHandle->id();
}

void OpenOutputListFile(const QString& name) {
    CreateOutputFile(g_OutputListFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE_LST);
}

void OpenOutputResFile(const QString& name) {
    CreateOutputFile(g_OutputResFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE_RES);
}

void OpenOutputErrFile(const QString& name) {
    CreateOutputFile(g_OutputErrFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE_ERR);
}

namespace {

// Gives the code file its name. False if that is not possible or another stands in its place.
bool PublishCodeFile() {
    finishedName = NativePath(g_OutputCodeFileName).string();
    const char* const unfinished = unfinishedName.c_str();
    const char* const finished = finishedName.c_str();
    const SignalsHeld held;
    if (!codeFileId.isItselfAt(unfinished) || std::rename(unfinished, finished) != 0) {
        return false;
    }
    doubtfulCodeFile = finished;
    return true;
}

}  // namespace

void FinishOutputCodeFile() {
    const bool isWhole = g_OutputCodeFileHandle && g_OutputCodeFileHandle->finish();
    if (!isWhole || !PublishCodeFile()) {
        AbortWriting();
    }
}

void KeepOutputCodeFile() {
    doubtfulCodeFile = nullptr;
}

void CloseOutputCodeFile() {
    g_OutputCodeFileHandle.reset();
}

void CloseOutputListFile() {
    g_OutputListFileHandle.reset();
}

void CloseOutputResFile() {
    g_OutputResFileHandle.reset();
}

void CloseOutputErrFile() {
    g_OutputErrFileHandle.reset();
}

void CloseAllFiles() {
    CloseInputCodeFile();
    CloseOutputCodeFile();
    CloseOutputListFile();
    CloseOutputResFile();
    CloseOutputErrFile();
}

// While the file is being made it is known by its name alone, which nobody else has.
void DeleteOutputCodeFile() noexcept {
    const SignalsHeld held;
    const char* const name = doubtfulCodeFile.exchange(nullptr);
    if (name != nullptr && (codeFileId.number == 0 || codeFileId.isItselfAt(name))) {
        std::remove(name);
    }
}

// ---------------------------------------------------------------------------------------------
// Writing to one output
// ---------------------------------------------------------------------------------------------

namespace {

void WriteStringToStandardOutput(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void WriteStringToSideFile(bool isWanted, const std::unique_ptr<FileHandle>& handle,
                           std::string_view text) {
    if (isWanted && handle) {
        handle->appendText(text);
    }
}

}  // namespace

void WriteStringToOutputCodeFile(std::string_view text) {
    char* const end = PutPart(ReserveCode(text.size()), text);
    g_OutputCodeFileHandle->commit(end);
}

void WriteStringToOutputListFile(std::string_view text) {
    WriteStringToSideFile(flag_SaveListFile, g_OutputListFileHandle, text);
}

void WriteStringToOutputResFile(std::string_view text) {
    WriteStringToSideFile(flag_SaveResFile, g_OutputResFileHandle, text);
}

void WriteStringToOutputErrFile(std::string_view text) {
    WriteStringToSideFile(flag_SaveErrFile, g_OutputErrFileHandle, text);
}

void WriteStringToScreen(std::string_view text, bool force) {
    if (flag_ShowOnScreen || force) {
        WriteStringToStandardOutput(text);
    }
}

// ---------------------------------------------------------------------------------------------
// The router
// ---------------------------------------------------------------------------------------------

namespace {

std::string listingLine;

// A code line as the listing shows it: its number with -n, the text, a line feed. Holds until the
// next one is made.
const std::string& ListingForm(std::string_view item) {
    listingLine.clear();
    if (flag_ShowLinesNumber) {
        IntToStr(g_OutputCodeFileCurrentLineCount + 1, listingLine, LINE_NUMBER_WIDTH);
        listingLine.push_back('\t');
    }
    listingLine.append(item);
    listingLine.push_back('\n');
    return listingLine;
}

void RouteMessage(const std::string& line, bool force) {
    const std::string marked = ';' + line;
    if (force) {
        WriteStringToStandardOutput(marked);
        return;
    }
    WriteStringToScreen(line, false);
    if (flag_ShowMessages) {
        WriteStringToOutputListFile(marked);
    }
    WriteStringToOutputResFile(line);
}

// QUIRK(error-file-place): the error file gets the place of the look-ahead character, which may
// lie after the token that the message names, and nothing separates two records. Readers of
// the file rely on it.
void RecordPosition() {
    const std::string line = std::to_string(g_InputCodeFileCurrentLineCount + 1);
    const std::string column = std::to_string(g_InputCodeFileCurrentPosCount + 1);
    WriteStringToOutputErrFile("e:" + line + ',' + column);
}

void RouteEcho(const std::string& line, bool force) {
    if (force) {
        WriteStringToStandardOutput(line);
        return;
    }
    WriteStringToScreen(line, false);
    if (flag_ShowInputFileLines) {
        WriteStringToOutputListFile(line);
    }
}

void WriteCodeLine(const QString& text, bool force) {
    const std::string item = text.toStdString();
    if (force) {
        WriteStringToStandardOutput(ListingForm(item));
    } else {
        WriteStringToOutputCodeFile(item + ' ');
        ListItem(item);
    }
    ++g_OutputCodeFileCurrentLineCount;
}

}  // namespace

void WriteToOutputFiles(const QString& text, TWhatStr kind, bool force) {
    const std::string line = text.toStdString() + '\n';
    switch (kind) {
        case WHAT_CODE:
            WriteCodeLine(text, force);
            break;
        case WHAT_INFORMATION:
        case WHAT_COMMAND_LINE_ERROR:
            RouteMessage(line, force);
            break;
        case WHAT_DIAGNOSTIC:
            RouteMessage(line, force);
            if (!force) {
                RecordPosition();
            }
            break;
        case WHAT_SOURCE_ECHO:
            RouteEcho(line, force);
            break;
        default:
            WriteStringToStandardOutput(line);
            break;
    }
}

bool AreDiagnosticsTaken() {
    return flag_ShowOnScreen || (flag_ShowMessages && flag_SaveListFile) || flag_SaveResFile ||
           g_Observer != nullptr;
}

void WriteLn(const QString& text, TWhatStr kind) {
    WriteToOutputFiles(text, kind, false);
}

// ---------------------------------------------------------------------------------------------
// Items of target code
// ---------------------------------------------------------------------------------------------

void AbortWriting() {
    Abort(TXT_PROBLEM_WRITING_OUTPUT_FILE);
}

void ListItem(std::string_view item) {
    Tell(&Observer::itemWritten, item);
    const std::string& line = ListingForm(item);
    WriteStringToScreen(line, false);
    WriteStringToOutputListFile(line);
}

// UTF-8 takes at most three bytes for a UTF-16 unit.
std::size_t PartSize(QStringView part) {
    constexpr std::size_t bytesPerUnit = 3;
    return bytesPerUnit * static_cast<std::size_t>(part.size());
}

char* PutPart(char* to, QStringView part) {
    char* end = to;
    for (const QChar unit : part) {
        if (unit.unicode() >= ASCII_COUNT) {
            return PutPart(to, part.toUtf8().toStdString());
        }
        *end++ = static_cast<char>(unit.unicode());
    }
    return end;
}
