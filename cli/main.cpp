#include "cli/CliCommands.h"
#include "desktop_only/OverlaySeams.h"
#include "resources/ResourceInit.h"

#include <QCoreApplication>

#include <iostream>
#include <unistd.h>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vantrel-cli"));
    vantrelInitResources();
    installOverlaySeams();
    std::vector<std::string> args(argv + 1, argv + argc);
    return runCli(args, std::cout, std::cerr, isatty(STDOUT_FILENO) != 0);
}
