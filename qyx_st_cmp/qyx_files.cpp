#include "qyx_files.h"

#include "qyx_messages.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

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
int g_OutputCodeFileCurrentLineCount = 0;
std::vector<int> g_InputCodeFileLinesList;
int g_InputCodeFileLineCount = 0;
int g_InputCodeFileTmpLineCount = -1;

namespace {

namespace fs = std::filesystem;

// The largest source, in bytes: its text must fit a QString.
constexpr qint64 MAX_SOURCE_SIZE = 1'000'000'000;

// How much output a file collects before it is written.
constexpr std::size_t WRITE_BLOCK_SIZE = std::size_t{256} * 1024;

// Digits of a code line's number in the listing; larger numbers take more.
constexpr std::size_t LINE_NUMBER_WIDTH = 4;

fs::path NativePath(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

// Removes an old output file. False if something is there that may not or cannot be removed:
// only a regular file is, or a symbolic link, and never a link to a device, pipe or socket. False
// for an empty name too, which no file can have.
bool RemoveOldFile(const QString& name) {
    std::error_code error;
    const fs::path path = NativePath(name);
    const fs::file_status entry = fs::symlink_status(path, error);
    if (entry.type() == fs::file_type::not_found) {
        return !path.empty();
    }
    if (!fs::is_regular_file(entry) && !fs::is_symlink(entry)) {
        return false;
    }
    const fs::file_status target = fs::status(path, error);
    if (fs::is_other(target)) {
        return false;
    }
    return fs::remove(path, error);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// FileHandle
// ---------------------------------------------------------------------------------------------

FileHandle::FileHandle(const QString& name, bool forReading) : QFile(name) {
    if (forReading) {
        readAllText();
    } else {
        opened_ = open(QIODevice::Append | QIODevice::Text | QIODevice::Unbuffered);
    }
}

FileHandle::~FileHandle() {
    writeCollected();
}

// Carriage returns are dropped, as text mode has it; a byte order mark is skipped by the decoder.
// A pipe or a device is refused before it is opened, as opening could wait for ever.
void FileHandle::readAllText() {
    std::error_code error;
    if (!fs::is_regular_file(NativePath(fileName()), error)) {
        return;
    }
    if (!open(QIODevice::ReadOnly | QIODevice::Unbuffered) || size() > MAX_SOURCE_SIZE) {
        return;
    }
    QByteArray bytes = readAll();
    if (std::memchr(bytes.constData(), '\r', static_cast<std::size_t>(bytes.size())) != nullptr) {
        bytes.replace('\r', QByteArray());
    }
    text_ = QString::fromUtf8(bytes.constData(), bytes.size());
    next_ = text_.constData();
    end_ = next_ + text_.size();
    opened_ = QFile::error() == QFileDevice::NoError;
    close();
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
    return QFile::exists(name);
}

bool IsSameFile(const QString& a, const QString& b) {
    std::error_code error;
    return fs::equivalent(NativePath(a), NativePath(b), error);
}

bool FileCanExists(const QString& name, bool removeAfter) {
    if (!RemoveOldFile(name)) {
        return false;
    }
    QFile probe(name);
    if (!probe.open(QIODevice::WriteOnly | QIODevice::Text)) {
        return false;
    }
    probe.close();
    return !removeAfter || RemoveOldFile(name);
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

// The line table and the scanner share one text, read once. It is only needed for the echo.
void OpenInputCodeFile(const QString& name) {
    assert(!g_InputCodeFileHandle);
    g_InputCodeFileHandle = std::make_unique<FileHandle>(name, true);
    if (!g_InputCodeFileHandle->isOpened()) {
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

void TypeInputCodeCurrentLine() {
    if (g_InputCodeFileTmpLineCount == g_InputCodeFileCurrentLineCount) {
        return;
    }
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

void OpenOutputFile(std::unique_ptr<FileHandle>& handle, const QString& name,
                    QLatin1String openFailed) {
    if (!RemoveOldFile(name)) {
        Abort(openFailed, true);
    }
    assert(!handle);
    handle = std::make_unique<FileHandle>(name, false);
    if (!handle->isOpened()) {
        Abort(openFailed, true);
    }
}

}  // namespace

void OpenOutputCodeFile(const QString& name) {
    g_OutputCodeFileName = name;
    OpenOutputFile(g_OutputCodeFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE);
}

void OpenOutputListFile(const QString& name) {
    OpenOutputFile(g_OutputListFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE_LST);
}

void OpenOutputResFile(const QString& name) {
    OpenOutputFile(g_OutputResFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE_RES);
}

void OpenOutputErrFile(const QString& name) {
    OpenOutputFile(g_OutputErrFileHandle, name, TXT_OPEN_FAILED_ON_OUTPUT_FILE_ERR);
}

void FinishOutputCodeFile() {
    if (!g_OutputCodeFileHandle || !g_OutputCodeFileHandle->finish()) {
        AbortWriting();
    }
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

void DeleteOutputCodeFile() {
    if (!g_OutputCodeFileName.isEmpty()) {
        RemoveOldFile(g_OutputCodeFileName);
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

// A code line as the listing shows it: its number with -n, the text, a line feed. Holds until the
// next one is made.
const std::string& ListingForm(std::string_view item) {
    static std::string line;
    line.clear();
    if (flag_ShowLinesNumber) {
        IntToStr(g_OutputCodeFileCurrentLineCount + 1, line, LINE_NUMBER_WIDTH);
        line.push_back('\t');
    }
    line.append(item);
    line.push_back('\n');
    return line;
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
    constexpr ushort asciiEnd = 0x80;
    char* end = to;
    for (const QChar unit : part) {
        if (unit.unicode() >= asciiEnd) {
            return PutPart(to, part.toUtf8().toStdString());
        }
        *end++ = static_cast<char>(unit.unicode());
    }
    return end;
}
