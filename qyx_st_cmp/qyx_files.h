// The source reader, the output files and the router of all output.
//
// Every text that the compiler produces passes the router, which decides by the kind of the line
// and the options what reaches the code file, the listing, the result file, the error file and
// standard output, and in which form. Items of target code, by far the most of it, are put
// together in the code file's buffer and take a short way. Texts travel as UTF-8 from here on.
#pragma once

#include "qyx_globals.h"
#include "qyx_observer.h"
#include "qyx_text.h"

#include <QByteArray>
#include <QFile>

#include <cstring>
#include <memory>
#include <string_view>

// A file by what the system knows it by, whatever names it has. Where files have no such numbers
// every name is taken for its own. Both may be asked in the handler of a signal.
struct FileId {
    quint64 device = 0;
    quint64 number = 0;

    bool isAt(const char* name) const noexcept;        // whether the name leads to it
    bool isItselfAt(const char* name) const noexcept;  // and is no symbolic link
};

// A file that is read whole when it is opened, or a new one that is written in large blocks.
// Names are taken as the bytes that the user gave. Only regular files are read, and only a name
// that is free is written: whatever stands at a name, links too, is never followed or opened for
// writing.
class FileHandle : public QFile {
public:
    FileHandle(const QString& name, bool forReading);
    // A source that is in no file.
    static std::unique_ptr<FileHandle> ofText(const QString& text);
    // An output that keeps nothing.
    static std::unique_ptr<FileHandle> discarding();
    ~FileHandle() override;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    const QString& name() const { return name_; }
    bool isOpened() const { return opened_; }
    const QString& text() const { return text_; }

    const FileId& id() const { return id_; }  // of what was opened

    // Reading: the next UTF-16 unit of the source, -1 after its end.
    int getChar() { return next_ == end_ ? -1 : (next_++)->unicode(); }

    // Reading: the character read last and those after it of which isIn holds; they are read
    // then. Holds them without a copy for as long as the file is open.
    template <typename Predicate>
    QStringView takeRun(Predicate isIn) {
        const QChar* first = next_ - 1;
        while (next_ != end_ && isIn(*next_)) {
            ++next_;
        }
        return QStringView(first, next_);
    }

    // Writing: space for that many bytes after all that was written; commit tells how much of it
    // was filled. Null when some of the text could not be written.
    char* reserve(std::size_t size) {
        const bool isReady = size <= static_cast<std::size_t>(bufferEnd_ - unused_);
        return isReady ? unused_ : makeSpace(size);
    }
    void commit(char* end) { unused_ = end; }

    // Writing: appends the text, unless some before it could not be written.
    void appendText(std::string_view utf8);

    // Writing: writes what is still collected and closes. False if anything could not be written.
    bool finish();

private:
    const QString name_;  // as given; QFile forgets it when it is opened by a number
    bool opened_ = false;
    FileId id_;
    QString text_;                    // the whole content when reading
    const QChar* next_ = nullptr;     // in text_, the next character
    const QChar* end_ = nullptr;      // the end of text_
    std::unique_ptr<char[]> buffer_;  // what writing has collected and not yet handed to the file
    char* unused_ = nullptr;          // in buffer_, after what is collected
    char* bufferEnd_ = nullptr;
    bool writeFailed_ = false;

    FileHandle() = default;
    bool openForReading();
    bool openNew();
    bool openNumber(int file, QIODevice::OpenMode mode);
    QByteArray readBytes();
    void readAllText();
    void setText(const QString& text);
    char* makeSpace(std::size_t size);
    void writeCollected();
};

// ---------------------------------------------------------------------------------------------
// Names on the command line
// ---------------------------------------------------------------------------------------------

// Whether there is a file of that name; links are followed.
bool FileExists(const QString& name);

// Probes that an output of that name can be created in place of an old one, which must be a
// regular file or a symbolic link. Nothing of that name is touched.
bool FileCanExists(const QString& name);

// Removes an old output, if there is one. False if it cannot be removed or is the source itself.
bool RemoveOldFile(const QString& name);

// ---------------------------------------------------------------------------------------------
// The source
// ---------------------------------------------------------------------------------------------

// Reads the whole source, unless it cannot be read. The file is judged by what was opened.
void ReadInputCodeFile(const QString& name);

// The largest source, in bytes: whatever part of it is converted must fit a QByteArray, three
// bytes for a character.
constexpr qint64 MAX_SOURCE_SIZE = 700'000'000;

// The text of a source of these bytes. Carriage returns are dropped, as text mode has it; a byte
// order mark is skipped.
QString SourceText(QByteArray bytes);

// Whether the whole source was read.
bool IsInputCodeFileRead();

// Whether the name leads to the source, by whatever links.
bool IsInputCodeFile(const QString& name);

// Makes the source that was read ready for the scanner. Aborts when it was not read.
void OpenInputCodeFile();
void CloseInputCodeFile();

// The next UTF-16 unit of the source, -1 after its end. Aborts when no source is open.
int ReadCharFromInputCodeFile();

// A source line as the listing echoes it, `;Line 7: "text"`; an empty line stays empty.
QString OutlineInputCodeString(QStringView text, int line);

// The place where comments would be taken out of the echo; the text comes back unchanged.
QStringView RemoveComment(QStringView text);

// A line of the source: its 0-based index and its echo, which is empty for a blank line.
struct InputCodeFileLineParams {
    int line;
    QString text;
};

// The line with that index; without text beyond the last.
InputCodeFileLineParams GetInputCodeFileCurrentLineParams(int line);

// Echoes the line of the look-ahead character, if that was not done yet. Called before each
// token.
void EchoInputCodeCurrentLine();
inline void TypeInputCodeCurrentLine() {
    if (g_InputCodeFileTmpLineCount != g_InputCodeFileCurrentLineCount) {
        EchoInputCodeCurrentLine();
    }
}

// ---------------------------------------------------------------------------------------------
// Output
// ---------------------------------------------------------------------------------------------

// Create a new, empty file. They abort, shown on standard output, when that is not possible. The
// code file has a name of its own in its folder until it is whole.
void OpenOutputCodeFile(const QString& name);
void OpenOutputListFile(const QString& name);
void OpenOutputResFile(const QString& name);
void OpenOutputErrFile(const QString& name);

// Closes the code file and gives it its name, in place of whatever stands there. Aborts if any of
// it could not be written: no part of it ever appears, and no success without it.
void FinishOutputCodeFile();

// Write what is collected and close; on a closed file they do nothing. What cannot be written to
// a file beside the code file is lost without notice.
void CloseOutputCodeFile();
void CloseOutputListFile();
void CloseOutputResFile();
void CloseOutputErrFile();
void CloseAllFiles();

// The run has succeeded: the code file stays.
void KeepOutputCodeFile();

// Removes the code file if one was made and is not to stay, and nothing that another has put to
// its name. It may be called by the handler of a signal.
void DeleteOutputCodeFile() noexcept;

// Appends to the code file. Aborts when there is none or a block of it could not be written.
void WriteStringToOutputCodeFile(std::string_view text);

// Append to one output. They fail silently and take nothing unless their option is set; the
// screen takes text with force too.
void WriteStringToOutputListFile(std::string_view text);
void WriteStringToOutputResFile(std::string_view text);
void WriteStringToOutputErrFile(std::string_view text);
void WriteStringToScreen(std::string_view text, bool force);

// The router. With force the line goes to standard output alone, whatever the options.
void WriteToOutputFiles(const QString& text, TWhatStr kind, bool force);

// Whether some output takes the text of diagnostics that are not forced. The error file takes
// their place in any case.
bool AreDiagnosticsTaken();

// WriteToOutputFiles, not forced.
void WriteLn(const QString& text, TWhatStr kind);

// ---------------------------------------------------------------------------------------------
// Items of target code
//
// An item is put together where it stands in the code file, from parts with nothing between them:
// for each kind of part its largest size and how it is put.
// ---------------------------------------------------------------------------------------------

// Aborts: there is no code file, or a block of it could not be written.
[[noreturn]] void AbortWriting();

// Space at the end of the code file.
// GCOVR_EXCL_START: it is a part of every item; unit.Router covers it once
Q_ALWAYS_INLINE char* ReserveCode(std::size_t size) {
    char* const space = g_OutputCodeFileHandle ? g_OutputCodeFileHandle->reserve(size) : nullptr;
    if (space == nullptr) {
        AbortWriting();
    }
    return space;
}
// GCOVR_EXCL_STOP

// The listing, the screen and the observer get the item too.
void ListItem(std::string_view item);

inline std::size_t PartSize(char) {
    return 1;
}
inline char* PutPart(char* to, char part) {
    *to = part;
    return to + 1;
}

inline std::size_t PartSize(std::string_view part) {
    return part.size();
}
inline char* PutPart(char* to, std::string_view part) {
    std::memcpy(to, part.data(), part.size());
    return to + part.size();
}

inline std::size_t PartSize(QLatin1String part) {
    return static_cast<std::size_t>(part.size());
}
inline char* PutPart(char* to, QLatin1String part) {
    return PutPart(to, std::string_view(part.data(), PartSize(part)));
}

std::size_t PartSize(QStringView part);
char* PutPart(char* to, QStringView part);

// Whether anything beside the code file takes the items.
inline bool AreItemsTaken() {
    return flag_ShowOnScreen || flag_SaveListFile || g_Observer != nullptr;
}

// Writes one item of target code.
//
// QUIRK(one-line-code): the code file is one single line: every item is followed by one blank
// and no line end, the last one too. The engine reads it so; lines exist in the listing alone.
template <typename... Parts>
Q_ALWAYS_INLINE void WriteItem(const Parts&... parts) {
    char* const begin = ReserveCode((PartSize(parts) + ...) + 1);
    char* end = begin;
    ((end = PutPart(end, parts)), ...);
    if (AreItemsTaken()) {
        ListItem({begin, static_cast<std::size_t>(end - begin)});
    }
    ++g_OutputCodeFileCurrentLineCount;
    g_OutputCodeFileHandle->commit(PutPart(end, ' '));
}
