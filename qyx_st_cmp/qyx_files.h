// The source reader, the output files and the router of all output.
//
// Every text that the compiler produces passes the router, which decides by the kind of the line
// and the options what reaches the code file, the listing, the result file, the error file and
// standard output, and in which form. Texts travel as UTF-8 from here on.
#pragma once

#include "qyx_globals.h"

#include <QFile>

#include <string>
#include <string_view>

// A file that is read whole when it is opened, or written in large blocks. Names are taken as the
// bytes that the user gave. Only regular files are read.
class FileHandle : public QFile {
public:
    FileHandle(const QString& name, bool forReading);
    ~FileHandle() override;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    bool isOpened() const { return opened_; }
    const QString& text() const { return text_; }

    // Reading: the next UTF-16 unit of the source, -1 behind its end, 0 from a file not opened.
    int getChar() {
        if (!opened_ || !reading_) {
            return 0;
        }
        return pos_ == text_.size() ? -1 : text_.at(pos_++).unicode();
    }

    // Writing: appends the text. False once anything could not be written.
    bool appendText(std::string_view utf8);

    // Writing: writes what is still buffered and closes. False if anything could not be written.
    bool finish();

private:
    bool opened_ = false;
    bool reading_;
    QString text_;           // the whole content when reading
    int pos_ = 0;            // index in text_ of the next character
    std::string unwritten_;  // what writing has collected and not yet handed to the file
    bool writeFailed_ = false;

    void readAllText();
    bool writeCollected();
};

// ---------------------------------------------------------------------------------------------
// Names on the command line
// ---------------------------------------------------------------------------------------------

bool FileExists(const QString& name);

// Whether both names lead to one existing file, by whatever links.
bool IsSameFile(const QString& a, const QString& b);

// Probes that a file of that name can be written. An old file of that name is removed, and with
// removeAfter so is the file that the probe made.
bool FileCanExists(const QString& name, bool removeAfter);

// ---------------------------------------------------------------------------------------------
// The source
// ---------------------------------------------------------------------------------------------

// Reads the whole source. Aborts when it cannot be read.
void OpenInputCodeFile(const QString& name);
void CloseInputCodeFile();

// The next UTF-16 unit of the source, -1 behind its end. Aborts when no source is open.
int ReadCharFromInputCodeFile();

// A source line as the listing echoes it, `;Line 7: "text"`; an empty line stays empty.
QString OutlineInputCodeString(const QString& text, int line);

// The place where comments would be taken out of the echo; the text comes back unchanged.
QString RemoveComment(const QString& text);

// The echo of the line with that 0-based index; empty for a blank line and beyond the last.
QString GetInputCodeFileCurrentLineParams(int line);

// Echoes the line of the look-ahead character, if that was not done yet. Called before each
// token.
void TypeInputCodeCurrentLine();

// ---------------------------------------------------------------------------------------------
// Output
// ---------------------------------------------------------------------------------------------

// Open a new, empty file. They abort, shown on standard output, when that is not possible.
void OpenOutputCodeFile(const QString& name);
void OpenOutputListFile(const QString& name);
void OpenOutputResFile(const QString& name);
void OpenOutputErrFile(const QString& name);

// Closes the code file and aborts if any of it could not be written: a success is never reported
// for a code file that is not whole.
void FinishOutputCodeFile();

void CloseOutputCodeFile();
void CloseOutputListFile();
void CloseOutputResFile();
void CloseOutputErrFile();
void CloseAllFiles();
void DeleteOutputCodeFile();

// Append to one output. The code file aborts on failure; the others fail silently and take
// nothing unless their option is set. The screen takes text with -s or with force.
void WriteStringToOutputCodeFile(std::string_view text);
void WriteStringToOutputListFile(std::string_view text);
void WriteStringToOutputResFile(std::string_view text);
void WriteStringToOutputErrFile(std::string_view text);
void WriteStringToScreen(std::string_view text, bool force);

// The router. With force the line goes to standard output alone, whatever the options.
void WriteToOutputFiles(const QString& text, TWhatStr kind, bool force);

// The router's row for target code: one item, not forced.
void WriteCodeItem(std::string_view item);

// WriteToOutputFiles, not forced.
void WriteLn(const QString& text, TWhatStr kind);

// ---------------------------------------------------------------------------------------------
// Items of target code
// ---------------------------------------------------------------------------------------------

void AppendPart(std::string& item, QStringView part);
inline void AppendPart(std::string& item, const QString& part) {
    AppendPart(item, QStringView(part));
}
inline void AppendPart(std::string& item, QLatin1String part) {
    item.append(part.data(), static_cast<std::size_t>(part.size()));
}
inline void AppendPart(std::string& item, char part) {
    item.push_back(part);
}

// Writes one item of target code, the parts joined with nothing between them. The item is built
// in place in one buffer that all items share.
template <typename... Parts>
void WriteItem(const Parts&... parts) {
    static std::string item;
    item.clear();
    (AppendPart(item, parts), ...);
    WriteCodeItem(item);
}
