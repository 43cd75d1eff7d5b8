// How an input wants its code executed.
#pragma once

#include "input.h"

#include "machine/profile.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// What is wrong with what an input has led to.
struct Unsound {
    QString what;
};

// Throws an Unsound unless that holds.
void Expect(bool holds, const QString& what);

// Fails if the text of a fault is none: it says something and has no full stop.
void ExpectFault(const QString& fault);

struct Setup {
    Profile profile;
    Checks checks;
    unsigned salt = 0;             // of the values that are put in
    bool areInputsGiven = false;   // by the salt
    bool isUninitialized = false;  // as if the script gave no value where the code has 0
    bool isNumbered = false;       // the listing that is made of the code
    QByteArray code;
    QByteArray inputs;
    QStringList arguments;
    QByteArray tests;
};

// Reads the choices; what the reader of engine files makes of them must be sound.
Setup SetupOf(const MachineInput& input);

// The profile by a number that stands for one value of each choice.
Profile ProfileOf(unsigned number);
// There are as many.
extern const unsigned PROFILES;

// A cycle ends soon, and its check stops the run.
void BoundRun(Profile& profile, Checks& checks, qint64 scanLimit);
