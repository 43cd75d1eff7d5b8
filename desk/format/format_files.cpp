#include "format/format_files.h"

#include "facts/input.h"
#include "facts/pool.h"
#include "format/line_ends.h"

#include "qyx_files.h"

#include <QDataStream>
#include <QFileInfo>

#include <map>
#include <stdexcept>

namespace {

// ---------------------------------------------------------------------------------------------
// Bytes
// ---------------------------------------------------------------------------------------------

constexpr const char* BYTE_ORDER_MARK = "\xEF\xBB\xBF";
InputBytes BytesOf(const QString& path) {
    const bool isReadable = path == QLatin1String(STANDARD_INPUT) || !QFileInfo(path).exists() ||
                            QFileInfo(path).isFile();
    return isReadable ? ReadInputBytes(path) : InputBytes{std::nullopt, ReadInput(path).failure};
}

// The text in the form of the file: its byte order mark, the end of its first line.
QByteArray BytesLike(const QByteArray& bytes, const QString& text) {
    const QByteArray result = LineEndsOf(bytes).applied(text).toUtf8();
    return bytes.startsWith(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK + result : result;
}

// Why these bytes would not be the same again.
QString FaultOfBytes(const QByteArray& bytes, const QString& text) {
    const QString fault = LineEndsOf(bytes).fault();
    if (!fault.isEmpty()) {
        return fault;
    }
    QByteArray plain = bytes;
    plain.replace("\r\n", "\n");
    const QByteArray again = text.toUtf8();
    return plain == again || plain == BYTE_ORDER_MARK + again ? QString()
                                                              : QStringLiteral("is not in UTF-8");
}

// ---------------------------------------------------------------------------------------------
// Files
// ---------------------------------------------------------------------------------------------

constexpr const char* PROVEN = "proven";

// What comes of a script in the child that compiles it: all facts would be far more to pass.
struct LaidOutScript {
    std::optional<ScriptError> error;
    std::optional<QString> text;  // in its layout
    ScriptContent content;        // of the script, where its text is another
};

LaidOutScript LaidOut(const Source& source, const Facts& facts, const FormatOptions& options) {
    LaidOutScript script;
    if (!facts.isCompiled()) {
        const MessageFact& error = facts.messages.back();
        script.error = {error.given, facts.textOf(error.text).toString(), error.constant};
    }
    script.text = FormatScript(source, facts, options).text;
    if (script.text && *script.text != source.text()) {
        script.content = ContentOf(source, facts);
    }
    return script;
}

constexpr auto OWN_BYTE_ORDER = static_cast<QDataStream::ByteOrder>(QSysInfo::ByteOrder);

QByteArray BytesOf(const LaidOutScript& script) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(OWN_BYTE_ORDER);
    stream << script.error.has_value();
    if (script.error) {
        const ScriptError& error = *script.error;
        stream << error.place.line << error.place.column << error.text << error.constant;
    }
    stream << script.text.has_value() << script.text.value_or(QString());
    const ScriptContent& content = script.content;
    stream << content.error << content.code << content.tokens << content.comments
           << content.unread;
    if (stream.status() != QDataStream::Ok) {
        throw std::length_error("layout");
    }
    return bytes;
}

LaidOutScript LaidOutScriptOf(const QByteArray& bytes) {
    LaidOutScript script;
    QDataStream stream(bytes);
    stream.setByteOrder(OWN_BYTE_ORDER);
    bool isThere = false;
    stream >> isThere;
    if (isThere) {
        ScriptError& error = script.error.emplace();
        stream >> error.place.line >> error.place.column >> error.text >> error.constant;
    }
    QString text;
    stream >> isThere >> text;
    script.text = isThere ? std::optional(text) : std::nullopt;
    ScriptContent& content = script.content;
    stream >> content.error >> content.code >> content.tokens >> content.comments >>
        content.unread;
    return script;
}

// A file between its two compiles: that of the script and that of the result.
struct FileUnderWay {
    FormattedFile file;
    std::optional<LaidOutScript> script;  // after the first
    Source result;                        // what came of it
};

class FormatRun {
public:
    FormatRun(const QStringList& files, const FormatFilesOptions& options,
              const std::function<void(const FormattedFile&)>& handOver)
        : files_(files), options_(options), handOver_(handOver) {}

    void run() {
        while (nextFile_ < files_.size() || pool_.running() > 0) {
            if (nextFile_ < files_.size() && pool_.running() < options_.jobs) {
                begin(nextFile_++);
            } else {
                goOn(pool_.wait());
            }
        }
    }

private:
    const QStringList& files_;
    const FormatFilesOptions& options_;
    const std::function<void(const FormattedFile&)>& handOver_;
    CompilePool pool_;
    std::map<int, FileUnderWay> running_;
    std::map<int, FormattedFile> done_;
    int nextFile_ = 0;
    int nextToHandOver_ = 0;

    QString nameOf(const QString& path) const {
        const bool isNamed =
            path == QLatin1String(STANDARD_INPUT) && !options_.stdinName.isEmpty();
        return isNamed ? options_.stdinName : NameOfInput(path);
    }

    void begin(int index) {
        FormattedFile file;
        file.path = files_[index];
        const InputBytes input = BytesOf(file.path);
        if (!input.bytes) {
            fail(index, std::move(file), input.failure);
            return;
        }
        file.bytes = *input.bytes;
        file.source = Source(nameOf(file.path), SourceText(file.bytes));
        const QString fault = FaultOfBytes(file.bytes, file.source.text());
        if (!fault.isEmpty()) {
            fail(index, std::move(file), fault);
            return;
        }
        const FileUnderWay& underWay =
            running_.emplace(index, FileUnderWay{std::move(file), std::nullopt, Source()})
                .first->second;
        pool_.start(
            index, underWay.file.source,
            [this, &underWay](const Facts& facts) {
                return BytesOf(LaidOut(underWay.file.source, facts, options_.format));
            },
            Records::ForLayout);
    }

    void goOn(const CompilePool::Finished& finished) {
        FileUnderWay& underWay = running_.at(finished.key);
        if (!finished.result.failure.isEmpty()) {
            fail(finished.key, std::move(underWay.file), finished.result.failure);
        } else if (!underWay.script) {
            takeLayout(finished.key, underWay, LaidOutScriptOf(finished.result.answer));
        } else if (finished.result.answer == PROVEN) {
            finish(finished.key, underWay);
        } else {
            fail(finished.key, std::move(underWay.file),
                 QString::fromUtf8(finished.result.answer));
        }
    }

    void takeLayout(int index, FileUnderWay& underWay, LaidOutScript script) {
        FormattedFile& file = underWay.file;
        file.error = script.error;
        if (!script.text) {
            end(index, std::move(file));
            return;
        }
        underWay.result = Source(file.source.name(), *script.text);
        underWay.script = std::move(script);
        if (underWay.result.text() == file.source.text()) {
            finish(index, underWay);
        } else {
            pool_.start(index, underWay.result, proofOf(underWay), Records::ForLayout);
        }
    }

    // The child that compiles the result has the content of the script in its memory.
    Question proofOf(const FileUnderWay& underWay) const {
        return [this, &underWay](const Facts& facts) {
            const QString fault = FaultOfFormatted(underWay.script->content, underWay.result,
                                                   facts, options_.format);
            return fault.isEmpty() ? QByteArray(PROVEN) : fault.toUtf8();
        };
    }

    void finish(int index, FileUnderWay& underWay) {
        underWay.file.result = BytesLike(underWay.file.bytes, underWay.result.text());
        end(index, std::move(underWay.file));
    }

    void fail(int index, FormattedFile file, const QString& failure) {
        file.failure = failure;
        end(index, std::move(file));
    }

    void end(int index, FormattedFile file) {
        done_.emplace(index, std::move(file));
        running_.erase(index);
        while (!done_.empty() && done_.begin()->first == nextToHandOver_) {
            handOver_(done_.begin()->second);
            done_.erase(done_.begin());
            ++nextToHandOver_;
        }
    }
};

}  // namespace

void FormatFiles(const QStringList& files, const FormatFilesOptions& options,
                 const std::function<void(const FormattedFile&)>& handOver) {
    FormatRun(files, options, handOver).run();
}
