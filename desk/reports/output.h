// Standard output for results, standard error for everything else, and how a run ends.
#pragma once

#include <QString>

#include <string_view>

// The exit statuses of all subcommands.
enum Status : int {
    STATUS_FINE = 0,
    STATUS_NOT_FINE = 1,  // the sources or the tests are not
    STATUS_FAILED = 2     // the call or the files are not, or the output could not be written
};

// Appends to standard output, UTF-8.
void Print(std::string_view text);
void Print(const QString& text);

// Writes "yxst: text." to standard error.
void Complain(const QString& text);

// Writes what is still collected. The status again, or STATUS_FAILED with a complaint if some of
// standard output could not be written; a reader that has left is not complained of.
Status FinishOutput(Status status);

// When colours are used.
enum class ColorWish : unsigned char { Auto, Always, Never };

// Whether text to that standard stream (its descriptor) is to have colours: Auto stands for a
// terminal without NO_COLOR in the environment.
bool HasColors(ColorWish wish, int descriptor);
