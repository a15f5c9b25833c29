#include "Commands.h"

#include <QCoreApplication>
#include <QTextStream>

#include <functional>
#include <map>

namespace {

int usage() {
    QTextStream(stderr) << "usage: tessorin-cli COMMAND [ARGS...]\n"
                           "commands:\n"
                           "  props FILE...   the property dictionaries of each file, as JSON\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(TESSORIN_APP_NAME);
    QCoreApplication::setApplicationVersion(TESSORIN_VERSION);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) return usage();
    static const std::map<QString, std::function<int(const QStringList&)>> commands{
        {"props", propsCommand},
    };
    auto it = commands.find(args.first());
    if (it == commands.end()) {
        QTextStream(stderr) << "tessorin-cli: unknown command '" << args.first() << "'\n";
        return usage();
    }
    return it->second(args.mid(1));
}
