// A program that only starts: what every program on Qt 5 Core takes before it does its own work.

#include <QtGlobal>

int main() {
    // Without a call the linker may leave the library out.
    return qVersion() == nullptr ? 1 : 0;
}
