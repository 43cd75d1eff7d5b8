// The router of all output, the output files, and the source reader with its echo.

#include <sys/resource.h>
#include <sys/stat.h>

#include <QDir>
#include <QFileInfo>

#include <csignal>
#include <vector>

#include "qyx_il.h"
#include "qyx_messages.h"
#include "support.h"

namespace {

// ---------------------------------------------------------------------------------------------
// Other users
// ---------------------------------------------------------------------------------------------

constexpr uid_t ROOT = 0;
constexpr uid_t STRANGER = 65534;

// Another user acts while this lives.
class AsStranger {
public:
    AsStranger() { EXPECT_EQ(seteuid(STRANGER), 0); }
    ~AsStranger() { EXPECT_EQ(seteuid(ROOT), 0); }
    AsStranger(const AsStranger&) = delete;
    AsStranger& operator=(const AsStranger&) = delete;
};

constexpr const char* NO_STRANGER = "only root acts as another user, in a folder open to him";

// Opens the folder to all users. False if the test cannot act as another one in there.
bool LetStrangersInto(const QByteArray& folder) {
    if (geteuid() != ROOT || chmod(folder, ACCESSPERMS) != 0) {
        return false;
    }
    const AsStranger stranger;
    return eaccess(folder, W_OK) == 0;
}

// ---------------------------------------------------------------------------------------------
// Routes
// ---------------------------------------------------------------------------------------------

// What one output gets of a line with the text "t".
enum class Form : unsigned char {
    Nothing,
    Item,         // t and a blank
    ListingForm,  // t and a line feed, numbered with -n
    Line,         // t and a line feed
    Marked,       // ";", t and a line feed
    Place         // the place of the look-ahead character
};

// What an output gets, if the flag is set; without a flag it always gets it.
struct Share {
    Form form = Form::Nothing;
    const bool* condition = nullptr;
};

struct Route {
    TWhatStr kind;
    bool force;
    Share screen;
    Share code;
    Share list;  // in addition the file must be wanted, as for the next two
    Share res;
    Share err;
};

const bool* const SCREEN = &flag_ShowOnScreen;
const bool* const MESSAGES = &flag_ShowMessages;
const bool* const SOURCE = &flag_ShowInputFileLines;

// clang-format off
const Route ROUTES[] = {
    {WHAT_CODE, true,  {Form::ListingForm}, {}, {}, {}, {}},
    {WHAT_CODE, false, {Form::ListingForm, SCREEN}, {Form::Item}, {Form::ListingForm}, {}, {}},
    {WHAT_INFORMATION, true,  {Form::Marked}, {}, {}, {}, {}},
    {WHAT_INFORMATION, false, {Form::Line, SCREEN}, {}, {Form::Marked, MESSAGES}, {Form::Line}, {}},
    {WHAT_COMMAND_LINE_ERROR, true,  {Form::Marked}, {}, {}, {}, {}},
    {WHAT_COMMAND_LINE_ERROR, false, {Form::Line, SCREEN}, {}, {Form::Marked, MESSAGES}, {Form::Line}, {}},
    {WHAT_DIAGNOSTIC, true,  {Form::Marked}, {}, {}, {}, {}},
    {WHAT_DIAGNOSTIC, false, {Form::Line, SCREEN}, {}, {Form::Marked, MESSAGES}, {Form::Line}, {Form::Place}},
    {WHAT_CONSOLE, true,  {Form::Line}, {}, {}, {}, {}},
    {WHAT_CONSOLE, false, {Form::Line}, {}, {}, {}, {}},
    {WHAT_SOURCE_ECHO, true,  {Form::Line}, {}, {}, {}, {}},
    {WHAT_SOURCE_ECHO, false, {Form::Line, SCREEN}, {}, {Form::Line, SOURCE}, {}, {}},
    {TWhatStr{6}, true,  {Form::Line}, {}, {}, {}, {}},
    {TWhatStr{6}, false, {Form::Line}, {}, {}, {}, {}},
    {TWhatStr{255}, false, {Form::Line}, {}, {}, {}, {}},
};
// clang-format on

bool* const OPTIONS[] = {&flag_SaveListFile,       &flag_ShowOnScreen, &flag_ShowInputFileLines,
                         &flag_ShowCommentedLines, &flag_ShowMessages, &flag_ShowLinesNumber,
                         &flag_SaveResFile,        &flag_SaveErrFile};
constexpr unsigned OPTION_SETS = 256;

std::string Shown(const Share& share, const std::string& text) {
    if (share.condition != nullptr && !*share.condition) {
        return "";
    }
    switch (share.form) {
        case Form::Item:
            return text + ' ';
        case Form::ListingForm:
            return (flag_ShowLinesNumber ? "0001\t" : "") + text + '\n';
        case Form::Line:
            return text + '\n';
        case Form::Marked:
            return ';' + text + '\n';
        case Form::Place:
            return "e:12,7";
        default:
            return "";
    }
}

class Router : public CompilerTest {
protected:
    void openOutputs() const {
        openOutput(OpenOutputCodeFile, "code");
        openOutput(OpenOutputListFile, "list");
        openOutput(OpenOutputResFile, "res");
        openOutput(OpenOutputErrFile, "err");
    }

    // Sends one line through the router and checks all that it reaches.
    void checkRoute(const Route& route, const QString& text) const {
        openOutputs();
        g_InputCodeFileCurrentLineCount = 11;
        g_InputCodeFileCurrentPosCount = 6;
        std::string screen;
        {
            ScreenCapture capture;
            WriteToOutputFiles(text, route.kind, route.force);
            screen = capture.text();
        }
        const std::string utf8 = Utf8(text);
        EXPECT_EQ(screen, Shown(route.screen, utf8));
        EXPECT_EQ(finishedCode(), Shown(route.code, utf8));
        checkSideFile("list", flag_SaveListFile, Shown(route.list, utf8));
        checkSideFile("res", flag_SaveResFile, Shown(route.res, utf8));
        checkSideFile("err", flag_SaveErrFile, Shown(route.err, utf8));
        EXPECT_EQ(g_OutputCodeFileCurrentLineCount, route.kind == WHAT_CODE ? 1 : 0);
    }

    // Opening the file ends the run; the screen shows it whatever the options.
    static void expectOpenFailure(const std::string& name, void (*open)(const QString&),
                                  const QString& file) {
        ExpectFailure([&] { open(file); },
                      ";" + ErrorAt(0, 0, "File open failed for output " + name));
    }

private:
    void checkSideFile(const char* name, bool isWanted, const std::string& content) const {
        EXPECT_EQ(ContentOf(path(name)), isWanted ? content : "") << name;
    }
};

TEST_F(Router, SendsEveryKindWhereItBelongsUnderEveryOptionSet) {
    for (unsigned options = 0; options < OPTION_SETS; ++options) {
        for (const Route& route : ROUTES) {
            ResetCompiler();
            for (unsigned i = 0; i < std::size(OPTIONS); ++i) {
                *OPTIONS[i] = (options >> i & 1U) != 0;
            }
            checkRoute(route, QStringLiteral("MOV @x #A0"));
            ASSERT_FALSE(HasFailure())
                << "kind " << route.kind << " force " << route.force << " options " << options;
        }
    }
}

TEST_F(Router, WritesTextAsUtf8AndUnchanged) {
    for (const Route& route : ROUTES) {
        ResetCompiler();
        for (bool* option : OPTIONS) {
            *option = true;
        }
        checkRoute(route, QStringLiteral(u" \t@Счётчик \"\U0001F600\"; "));
        ASSERT_FALSE(HasFailure()) << "kind " << route.kind << " force " << route.force;
    }
}

TEST_F(Router, WriteLnDoesNotForce) {
    openOutputs();
    ScreenCapture capture;
    WriteLn(QStringLiteral("RET"), WHAT_CODE);
    WriteLn(QStringLiteral("banner"), WHAT_INFORMATION);
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(finishedCode(), "RET ");
}

TEST_F(Router, TheScreenTakesTextWithItsOptionOrWithForce) {
    ScreenCapture capture;
    WriteStringToScreen("1", false);
    WriteStringToScreen("2", true);
    flag_ShowOnScreen = true;
    WriteStringToScreen("3", false);
    EXPECT_EQ(capture.text(), "23");
}

TEST_F(Router, ItemsShareOneLineOfTheCodeFileAndHaveTheirOwnInTheListing) {
    flag_SaveListFile = true;
    openOutputs();
    WriteLn(QStringLiteral("PROG:"), WHAT_CODE);
    WriteItem("MOV"_L1, ' ', QStringView(u"@ж"), " #A0"_L1);
    WriteItem(Label{17}, ':');
    EXPECT_EQ(finishedCode(), "PROG: MOV @ж #A0 L17: ");
    EXPECT_EQ(ContentOf(path("list")), "PROG:\nMOV @ж #A0\nL17:\n");
}

TEST_F(Router, AMillionItemsArriveInOrder) {
    openOutputs();
    std::string expected;
    for (int i = 0; i < 1000000; ++i) {
        WriteItem(Label{i}, ':');
        expected += 'L' + std::to_string(i) + ": ";
    }
    EXPECT_TRUE(finishedCode() == expected);
}

// ---------------------------------------------------------------------------------------------
// Numbers of code lines
// ---------------------------------------------------------------------------------------------

TEST_F(Router, NumbersCountCodeLinesOnly) {
    flag_SaveListFile = true;
    flag_ShowMessages = true;
    flag_ShowInputFileLines = true;
    flag_ShowLinesNumber = true;
    openOutputs();
    WriteLn(QStringLiteral("banner"), WHAT_INFORMATION);
    WriteLn(QStringLiteral("A"), WHAT_CODE);
    WriteLn(QStringLiteral(";echo"), WHAT_SOURCE_ECHO);
    WriteLn(QStringLiteral("warning"), WHAT_DIAGNOSTIC);
    WriteLn(QStringLiteral("B"), WHAT_CODE);
    CloseAllFiles();
    EXPECT_EQ(ContentOf(path("list")), ";banner\n0001\tA\n;echo\n;warning\n0002\tB\n");
}

TEST_F(Router, ForcedAndUnnumberedCodeLinesCountToo) {
    flag_SaveListFile = true;
    openOutputs();
    WriteLn(QStringLiteral("A"), WHAT_CODE);
    flag_ShowLinesNumber = true;
    {
        ScreenCapture capture;
        WriteToOutputFiles(QStringLiteral("B"), WHAT_CODE, true);
        EXPECT_EQ(capture.text(), "0002\tB\n");
    }
    WriteLn(QStringLiteral("C"), WHAT_CODE);
    CloseAllFiles();
    EXPECT_EQ(ContentOf(path("list")), "A\n0003\tC\n");
}

TEST_F(Router, NumbersGrowBeyondFourDigits) {
    flag_SaveListFile = true;
    flag_ShowLinesNumber = true;
    g_OutputCodeFileCurrentLineCount = 9998;
    openOutputs();
    WriteLn(QStringLiteral("A"), WHAT_CODE);
    WriteLn(QStringLiteral("B"), WHAT_CODE);
    CloseAllFiles();
    EXPECT_EQ(ContentOf(path("list")), "9999\tA\n10000\tB\n");
}

// ---------------------------------------------------------------------------------------------
// Errors
// ---------------------------------------------------------------------------------------------

TEST_F(Router, RecordsFollowEachOtherWithThePlaceOfTheLookAheadCharacter) {
    flag_SaveErrFile = true;
    flag_SaveResFile = true;
    openOutputs();
    CurrentToken.place.begin = {0, 0};
    Warning(TXT_WARNING, QStringLiteral("a"), false);
    g_InputCodeFileCurrentLineCount = 99;
    g_InputCodeFileCurrentPosCount = 41;
    Warning(TXT_WARNING, {7, 8}, QStringLiteral("b"), false);
    Error(TXT_ERROR, QStringLiteral("c"), false);
    CloseAllFiles();
    EXPECT_EQ(ContentOf(path("err")), "e:1,0e:100,42e:100,42");
    EXPECT_EQ(ContentOf(path("res")),
              "Warning: Line 1, Column 1: a\n"
              "Warning: Line 8, Column 9: b\n"
              "Error: Line 1, Column 1: c\n");
}

TEST_F(Router, AnAbortKeepsTheSideFilesAndDeletesTheCodeFile) {
    flag_SaveListFile = true;
    flag_ShowMessages = true;
    flag_SaveResFile = true;
    flag_SaveErrFile = true;
    const std::string line = "Error: Line 0, Column 0: text\n";
    const auto abort = [&] {
        openOutputs();
        WriteLn(QStringLiteral("RET"), WHAT_CODE);
        Abort(TXT_ERROR, QStringLiteral("text"), false);
    };
    ExpectFailure(abort, "RET\n" + line);
    EXPECT_FALSE(FileExists(path("code")));
    EXPECT_EQ(ContentOf(path("list")), "RET\n;" + line);
    EXPECT_EQ(ContentOf(path("res")), line);
    EXPECT_EQ(ContentOf(path("err")), "e:1,0");
}

TEST_F(Router, AForcedAbortReachesNoFile) {
    flag_SaveListFile = true;
    flag_ShowMessages = true;
    flag_SaveResFile = true;
    flag_SaveErrFile = true;
    const auto abort = [&] {
        openOutputs();
        Abort(TXT_ERROR, QStringLiteral("text"), true);
    };
    ExpectFailure(abort, std::string(";Error: Line 0, Column 0: text\n"));
    EXPECT_FALSE(FileExists(path("code")));
    for (const char* name : {"list", "res", "err"}) {
        EXPECT_EQ(ContentOf(path(name)), "") << name;
    }
}

TEST_F(Router, CodeWithoutACodeFileEndsTheRun) {
    const std::string line = ErrorAt(0, 0, "A problem writing output file");
    ExpectFailure([] { WriteLn(QStringLiteral("RET"), WHAT_CODE); }, testing::EndsWith(line));
    ExpectFailure([] { WriteItem("RET"_L1); }, line);
    ExpectFailure([] { FinishOutputCodeFile(); }, line);
}

TEST_F(Router, SideFilesTakeNothingBeforeTheyAreOpenedAndAfterTheyAreClosed) {
    flag_SaveListFile = true;
    flag_ShowMessages = true;
    flag_SaveResFile = true;
    flag_SaveErrFile = true;
    WriteLn(QStringLiteral("before"), WHAT_DIAGNOSTIC);
    openOutputs();
    WriteLn(QStringLiteral("between"), WHAT_DIAGNOSTIC);
    CloseAllFiles();
    WriteLn(QStringLiteral("after"), WHAT_DIAGNOSTIC);
    EXPECT_EQ(ContentOf(path("list")), ";between\n");
    EXPECT_EQ(ContentOf(path("res")), "between\n");
    EXPECT_EQ(ContentOf(path("err")), "e:1,0");
}

TEST_F(Router, ACodeFileThatCannotBeWrittenEndsTheRun) {
    constexpr rlim_t limit = 4 << 20;  // more than the data of a coverage run
    const auto write = [&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit fileSize = {limit, limit};
        setrlimit(RLIMIT_FSIZE, &fileSize);
        flag_ShowOnScreen = false;
        openOutput(OpenOutputCodeFile, "code");
        WriteItem(std::string_view(std::string(limit + 1, 'x')));
        flag_ShowOnScreen = true;
        FinishOutputCodeFile();
    };
    ExpectFailure(write, ErrorAt(0, 0, "A problem writing output file"));
    EXPECT_FALSE(FileExists(path("code")));
}

TEST_F(Router, AFinishedCodeFileIsWhole) {
    openOutput(OpenOutputCodeFile, "code");
    WriteLn(QStringLiteral("RET"), WHAT_CODE);
    FinishOutputCodeFile();
    EXPECT_EQ(ContentOf(path("code")), "RET ");
}

// ---------------------------------------------------------------------------------------------
// Output files
// ---------------------------------------------------------------------------------------------

TEST_F(Router, OutputFilesStartEmpty) {
    for (const char* name : {"code", "list", "res", "err"}) {
        writeFile(name, "old");
    }
    openOutputs();
    EXPECT_EQ(finishedCode(), "");
    for (const char* name : {"list", "res", "err"}) {
        EXPECT_EQ(ContentOf(path(name)), "") << name;
    }
}

TEST_F(Router, OutputFilesThatCannotBeMadeEndTheRun) {
    const QString impossible = path("missing/file");
    expectOpenFailure("file", OpenOutputCodeFile, impossible);
    expectOpenFailure("LST file", OpenOutputListFile, impossible);
    expectOpenFailure("RES file", OpenOutputResFile, impossible);
    expectOpenFailure("ERR file", OpenOutputErrFile, impossible);
}

TEST_F(Router, AnOutputIsCreatedWhereNothingIs) {
    const QString old = writeFile("old", "text");
    ASSERT_TRUE(QFile::link(path("target"), path("link")));
    for (const QString& name : {old, path("link")}) {
        expectOpenFailure("LST file", OpenOutputListFile, name);
        expectOpenFailure("RES file", OpenOutputResFile, name);
        expectOpenFailure("ERR file", OpenOutputErrFile, name);
    }
    EXPECT_EQ(ContentOf(old), "text");
    EXPECT_FALSE(FileExists(path("target")));
}

TEST_F(Router, NothingButAFileOrALinkIsReplacedByAnOutput) {
    const QString directory = path("directory");
    const QString pipe = path("pipe");
    ASSERT_EQ(mkdir(QFile::encodeName(directory), S_IRWXU), 0);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe), S_IRUSR | S_IWUSR), 0);
    for (const QString& name : {directory, pipe}) {
        EXPECT_FALSE(FileCanExists(name));
        EXPECT_FALSE(RemoveOldFile(name));
        EXPECT_TRUE(FileExists(name));
    }
    const QString target = writeFile("target", "text");
    ASSERT_TRUE(QFile::link(target, path("link")));
    EXPECT_TRUE(FileCanExists(path("link")));
    EXPECT_TRUE(RemoveOldFile(path("link")));
    EXPECT_FALSE(QFileInfo(path("link")).isSymLink());
    EXPECT_EQ(ContentOf(target), "text");
}

TEST_F(Router, AProbeLeavesEverythingAsItIs) {
    writeFile("old", "text");
    EXPECT_TRUE(FileCanExists(path("old")));
    EXPECT_TRUE(FileCanExists(path("new")));
    EXPECT_EQ(ContentOf(path("old")), "text");
    EXPECT_EQ(QDir(path(".")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("old")});
}

TEST_F(Router, AnOutputNeedsANameAndAFolderForFiles) {
    for (const QString& name :
         {QString(), path("missing/file"), path(""), path(std::string(300, 'x').c_str()),
          QStringLiteral("/dev/stdout"), QStringLiteral("/dev/none"),
          QStringLiteral("/proc/none"), QStringLiteral("/proc/self/fd/1")}) {
        EXPECT_FALSE(FileCanExists(name)) << Utf8(name);
    }
}

struct SharedFolder {
    uid_t folderOwner;
    uid_t fileOwner;
    mode_t mode;
    bool isForStranger;
};

// In a folder such as /tmp an output is replaced by its owner and that of the folder alone.
TEST_F(Router, AnOutputInASharedFolderBelongsToItsOwner) {
    const QByteArray folder = QFile::encodeName(path("."));
    const QString output = writeFile("output", "text");
    if (!LetStrangersInto(folder)) {
        GTEST_SKIP() << NO_STRANGER;
    }
    for (const SharedFolder& shared : {SharedFolder{ROOT, ROOT, ACCESSPERMS, true},
                                       {ROOT, ROOT, ACCESSPERMS | S_ISVTX, false},
                                       {ROOT, STRANGER, ACCESSPERMS | S_ISVTX, true},
                                       {STRANGER, ROOT, ACCESSPERMS | S_ISVTX, true}}) {
        ASSERT_EQ(chown(QFile::encodeName(output), shared.fileOwner, ROOT), 0);
        ASSERT_EQ(chown(folder, shared.folderOwner, ROOT), 0);
        ASSERT_EQ(chmod(folder, shared.mode), 0);
        EXPECT_TRUE(FileCanExists(output));
        const AsStranger stranger;
        EXPECT_EQ(FileCanExists(output), shared.isForStranger);
        EXPECT_TRUE(FileCanExists(path("new")));
    }
}

TEST_F(Router, AnOldOutputIsRemovedUnlessItIsTheSource) {
    EXPECT_TRUE(RemoveOldFile(path("missing")));
    const QString source = writeFile("source.st", "text");
    ReadInputCodeFile(source);
    writeFile("old", "text");
    EXPECT_TRUE(RemoveOldFile(path("old")));
    EXPECT_FALSE(FileExists(path("old")));
    EXPECT_FALSE(RemoveOldFile(source));
    EXPECT_EQ(ContentOf(source), "text");
}

TEST_F(Router, AFileIsKnownByItsNumberAndItsDevice) {
    const QByteArray name = QFile::encodeName(writeFile("file", "text"));
    ASSERT_TRUE(QFile::link(path("file"), path("link")));
    struct stat status = {};
    ASSERT_EQ(stat(name, &status), 0);
    const FileId id = {status.st_dev, status.st_ino};
    EXPECT_TRUE(id.isAt(name));
    EXPECT_TRUE(id.isItselfAt(name));
    EXPECT_TRUE(id.isAt(QFile::encodeName(path("link"))));
    EXPECT_FALSE(id.isItselfAt(QFile::encodeName(path("link"))));
    for (const FileId other : {FileId{id.device + 1, id.number}, {id.device, id.number + 1}}) {
        EXPECT_FALSE(other.isAt(name));
        EXPECT_FALSE(other.isItselfAt(name));
    }
    const QByteArray missing = QFile::encodeName(path("missing"));
    EXPECT_FALSE(FileId().isAt(missing));
    EXPECT_FALSE(FileId().isItselfAt(missing));
}

TEST_F(Router, TheCodeFileHasItsNameWhenItIsWhole) {
    openOutput(OpenOutputCodeFile, "code");
    EXPECT_FALSE(FileExists(path("code")));
    const QString unfinished = g_OutputCodeFileHandle->name();
    EXPECT_TRUE(FileExists(unfinished));
    CloseAllFiles();
    DeleteOutputCodeFile();
    EXPECT_FALSE(FileExists(unfinished));
    DeleteOutputCodeFile();
}

TEST_F(Router, ACodeFileThatCannotTakeItsNameEndsTheRun) {
    openOutput(OpenOutputCodeFile, "code");
    ASSERT_EQ(mkdir(QFile::encodeName(path("code")), S_IRWXU), 0);
    ExpectFailure([] { FinishOutputCodeFile(); }, ErrorAt(0, 0, "A problem writing output file"));
}

TEST_F(Router, ClosingOneOutputLeavesTheOthersOpen) {
    openOutputs();
    CloseOutputListFile();
    EXPECT_EQ(g_OutputListFileHandle, nullptr);
    EXPECT_NE(g_OutputCodeFileHandle, nullptr);
    CloseOutputResFile();
    EXPECT_EQ(g_OutputResFileHandle, nullptr);
    CloseOutputErrFile();
    EXPECT_EQ(g_OutputErrFileHandle, nullptr);
    CloseOutputCodeFile();
    EXPECT_EQ(g_OutputCodeFileHandle, nullptr);
}

// ---------------------------------------------------------------------------------------------
// The source and its echo
// ---------------------------------------------------------------------------------------------

class Source : public CompilerTest {
protected:
    // The echoes of all lines; there must be as many as told.
    std::vector<std::string> echoesOf(const std::string& source, int count) const {
        ResetCompiler();
        flag_ShowInputFileLines = true;
        readSource(source);
        EXPECT_EQ(g_InputCodeFileLinesList.size(), static_cast<std::size_t>(count));
        std::vector<std::string> echoes;
        echoes.reserve(static_cast<std::size_t>(count));
        for (int line = 0; line < count; ++line) {
            echoes.push_back(Utf8(GetInputCodeFileCurrentLineParams(line).text));
        }
        EXPECT_TRUE(GetInputCodeFileCurrentLineParams(count).text.isEmpty());
        EXPECT_TRUE(GetInputCodeFileCurrentLineParams(count + 1).text.isEmpty());
        return echoes;
    }
    using Echoes = std::vector<std::string>;
};

TEST_F(Source, AnEchoQuotesTheLineAfterItsNumber) {
    EXPECT_EQ(Utf8(OutlineInputCodeString(QStringLiteral("x := x + 1;"), 6)),
              ";Line 7: \"x := x + 1;\"");
    EXPECT_EQ(Utf8(OutlineInputCodeString(QStringLiteral("%1 \"a\""), 0)),
              ";Line 1: \"%1 \"a\"\"");
    EXPECT_EQ(Utf8(OutlineInputCodeString(QString(), 6)), "");
}

TEST_F(Source, CommentsStayInTheEchoWithAndWithoutTheirOption) {
    const QString text = QStringLiteral("x; // c (* d *)");
    EXPECT_EQ(RemoveComment(text), text);
    flag_ShowCommentedLines = true;
    EXPECT_EQ(RemoveComment(text), text);
}

TEST_F(Source, EveryLineHasItsEchoTrimmed) {
    EXPECT_EQ(echoesOf("a\n\n \t a := 1; \nб", 4),
              (Echoes{";Line 1: \"a\"", "", ";Line 3: \"a := 1;\"", ";Line 4: \"б\""}));
    EXPECT_EQ(echoesOf("a\r\nb\r\n", 3), (Echoes{";Line 1: \"a\"", ";Line 2: \"b\"", ""}));
    EXPECT_EQ(echoesOf("a\rb\r\r\nc", 2), (Echoes{";Line 1: \"ab\"", ";Line 2: \"c\""}));
    EXPECT_EQ(echoesOf("\xEF\xBB\xBF"
                       "a",
                       1),
              (Echoes{";Line 1: \"a\""}));
    EXPECT_EQ(echoesOf("a\xFF", 1), (Echoes{";Line 1: \"a\xEF\xBF\xBD\""}));
    EXPECT_EQ(echoesOf("", 1), (Echoes{""}));
    EXPECT_EQ(echoesOf("\n", 2), (Echoes{"", ""}));
}

TEST_F(Source, EachLineIsEchoedOnceBeforeItsFirstToken) {
    flag_ShowInputFileLines = true;
    flag_ShowOnScreen = true;
    ScreenCapture capture;
    openSource("  a b\n\n;\n(* c\nd *) e\n");
    EXPECT_EQ(capture.text(), "");
    Scan();
    EXPECT_EQ(capture.text(), ";Line 1: \"a b\"\n");
    ScanName();
    SkipWhite();
    Scan();
    EXPECT_EQ(capture.text(), ";Line 1: \"a b\"\n;Line 3: \";\"\n");
    Scan();
    EXPECT_EQ(capture.text(),
              ";Line 1: \"a b\"\n;Line 3: \";\"\n;Line 4: \"(* c\"\n;Line 5: \"d *) e\"\n");
}

TEST_F(Source, NoLineIsEchoedWithoutTheOption) {
    flag_ShowOnScreen = true;
    ScreenCapture capture;
    openSource("a\nb");
    Scan();
    Scan();
    EXPECT_EQ(capture.text(), "");
}

TEST_F(Source, CharactersAreReadOneByOneUpToTheEnd) {
    readSource("a\r\nЖ\U0001F600");
    for (const int character : {0x61, 0x0A, 0x416, 0xD83D, 0xDE00, -1, -1}) {
        EXPECT_EQ(ReadCharFromInputCodeFile(), character);
    }
}

TEST_F(Source, AnEmptyFileEndsAtOnce) {
    readSource("");
    EXPECT_EQ(ReadCharFromInputCodeFile(), -1);
}

TEST_F(Source, AClosedSourceIsNotRead) {
    openSource("a");
    CloseInputCodeFile();
    EXPECT_TRUE(g_InputCodeFileLinesList.empty());
    ExpectFailure([] { ReadCharFromInputCodeFile(); },
                  ErrorAt(0, 0, "A problem reading input file"));
}

TEST_F(Source, ASourceThatCannotBeReadEndsTheRun) {
    const QString directory = path("directory");
    const QString pipe = path("pipe");
    ASSERT_EQ(mkdir(QFile::encodeName(directory), S_IRWXU), 0);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe), S_IRUSR | S_IWUSR), 0);
    for (const QString& name : {path("missing"), directory, pipe, QStringLiteral("/dev/zero")}) {
        ResetCompiler();
        ReadInputCodeFile(name);
        EXPECT_FALSE(IsInputCodeFileRead());
        ExpectFailure([] { OpenInputCodeFile(); },
                      ErrorAt(0, 0, "File open failed for input file"));
    }
}

TEST_F(Source, AFileIsReadToItsEndWhateverSizeItTells) {
    ReadInputCodeFile(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(IsInputCodeFileRead());
    EXPECT_TRUE(g_InputCodeFileHandle->text().startsWith(QStringLiteral("Name:")));
}

TEST_F(Source, TheSourceIsKnownByWhateverName) {
    const QString file = writeFile("file", "a");
    ASSERT_TRUE(QFile::link(file, path("link")));
    ReadInputCodeFile(file);
    EXPECT_TRUE(IsInputCodeFile(file));
    EXPECT_TRUE(IsInputCodeFile(path("link")));
    EXPECT_TRUE(IsInputCodeFile(path("./file")));
    EXPECT_FALSE(IsInputCodeFile(writeFile("other", "a")));
    EXPECT_FALSE(IsInputCodeFile(path("missing")));
}

TEST_F(Source, ASourceThatMayNotBeReadIsKnownByItsName) {
    const QString source = writeFile("source", "text");
    ASSERT_EQ(chmod(QFile::encodeName(source), 0), 0);
    if (!LetStrangersInto(QFile::encodeName(path(".")))) {
        GTEST_SKIP() << NO_STRANGER;
    }
    const AsStranger stranger;
    ReadInputCodeFile(source);
    EXPECT_FALSE(IsInputCodeFileRead());
    EXPECT_TRUE(IsInputCodeFile(path("./source")));
    EXPECT_FALSE(IsInputCodeFile(path("other")));
}

// What was opened counts, whatever has its name by now.
TEST_F(Source, TheSourceIsKnownByWhatWasOpened) {
    const QString file = writeFile("file", "a");
    ReadInputCodeFile(file);
    ASSERT_TRUE(QFile::rename(file, path("moved")));
    writeFile("file", "b");
    EXPECT_TRUE(IsInputCodeFile(path("moved")));
}

}  // namespace
