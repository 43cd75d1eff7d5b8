#include "options.h"

#include <limits>

void AddColorOption(CLI::App& command, ColorWish& wish) {
    const std::map<std::string, ColorWish> wishes = {
        {"auto", ColorWish::Auto}, {"always", ColorWish::Always}, {"never", ColorWish::Never}};
    AddChoiceOption(command, "--color", wish, wishes, "WHEN", "auto, always or never");
}

void AddCountOption(CLI::App& command, const char* option, int& count, const char* description) {
    command.add_option(option, count, description)
        ->option_text("N")
        ->check([](const std::string& text) {
            bool isNumber = false;
            const int number = QString::fromStdString(text).toInt(&isNumber);
            const std::string most = std::to_string(std::numeric_limits<int>::max());
            return isNumber && number > 0 ? std::string()
                                          : text + " is no whole number from 1 to " + most;
        });
}

QString TextOfArgument(const std::string& argument) {
    return QString::fromLocal8Bit(argument.c_str());
}

QStringList ListOf(const std::vector<std::string>& arguments) {
    QStringList list;
    for (const std::string& argument : arguments) {
        list.append(TextOfArgument(argument));
    }
    return list;
}
