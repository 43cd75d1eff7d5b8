// Reports that have something of everything, for the tests of how they are shown.
#pragma once

#include "check/diagnostic.h"

#include <QString>

#include <vector>

// The first piece of the source with that text.
inline Span PieceOf(const Source& source, const QString& text) {
    const int begin = source.text().indexOf(text);
    return {begin, begin + text.size()};
}

inline FileReport PumpReport() {
    const Source source(QStringLiteral("plant/pump.st"),
                        QStringLiteral("PROGRAM pump\n"
                                       "VAR\n"
                                       "    level, spare : INT;\n"
                                       "END_VAR\n"
                                       "    level := level + 1\n"
                                       "    IF levle > 5 THEN\n"
                                       "        level = 0;\n"
                                       "    END_IF\n"
                                       "END_PROGRAM\n"
                                       "\n"));
    const Help missing = {QStringLiteral("missing-semicolon"),
                          QStringLiteral("end this statement with \";\""),
                          {source.offsetOf({5, 23}), source.offsetOf({5, 23})}};
    const Help similar = {QStringLiteral("similar-name"), QStringLiteral("did you mean `level`?"),
                          PieceOf(source, QStringLiteral("level"))};
    const Help assign = {QStringLiteral("equals-for-assignment"),
                         QStringLiteral("\"=\" compares; \":=\" assigns"),
                         {}};
    return {source,
            {{Level::Warning,
              QStringLiteral("is-declared-but-never-used"),
              QStringLiteral("The variable \"spare\" is declared but never used"),
              PieceOf(source, QStringLiteral("spare")),
              {}},
             {Level::Error,
              QStringLiteral("expected-but"),
              QStringLiteral("\";\" expected but \"IF\" found"),
              PieceOf(source, QStringLiteral("IF")),
              {missing}},
             {Level::Error,
              QStringLiteral("undefined-identifier"),
              QStringLiteral("Undefined Identifier \"levle\""),
              PieceOf(source, QStringLiteral("levle")),
              {similar, assign}},
             {Level::Note,
              QStringLiteral("stopped-here"),
              QStringLiteral("stopped here"),
              {source.size(), source.size()},
              {}}}};
}

// Other scripts, tabs, line ends of two characters, and a name that every format has to escape.
inline FileReport TankReport() {
    const Source source(QStringLiteral("бак, 1%:a.st"),
                        QStringLiteral("(* 水位 é 😀 *)\tуровень := 'не\tоткрыт;\r\n"
                                       "\tconst := '漢字'\r\n"
                                       "+ 1;\r\n"));
    return {source,
            {{Level::Error,
              QStringLiteral("unterminated-string"),
              QStringLiteral("Unterminated string"),
              PieceOf(source, QStringLiteral("'не\tоткрыт;")),
              {}},
             {Level::Error,
              QStringLiteral("incompatible-types"),
              QStringLiteral("Incompatible types: 100%\r\nSTRING"),
              PieceOf(source, QStringLiteral("'漢字'\r\n+ 1")),
              {}}}};
}

inline FileReport GoodReport() {
    return {Source(QStringLiteral("good.st"), QStringLiteral("PROGRAM good\nEND_PROGRAM\n")), {}};
}

inline std::vector<FileReport> SampleReports() {
    return {PumpReport(), GoodReport(), TankReport()};
}
