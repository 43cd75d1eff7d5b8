#include "options.h"

#include <map>

void AddColorOption(CLI::App& command, ColorWish& wish) {
    const std::map<std::string, ColorWish> wishes = {
        {"auto", ColorWish::Auto}, {"always", ColorWish::Always}, {"never", ColorWish::Never}};
    command.add_option("--color", wish, "auto, always or never")
        ->option_text("WHEN")
        ->transform(CLI::CheckedTransformer(wishes));
}

QStringList ListOf(const std::vector<std::string>& arguments) {
    QStringList list;
    for (const std::string& argument : arguments) {
        list.append(QString::fromLocal8Bit(argument.c_str()));
    }
    return list;
}
