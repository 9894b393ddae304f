#include "SignScript.h"
#include "platform/console.h"

int main(int argc, char** argv) {
    osConsolePrepare();
    return Quorel::SignScript().run(argc, argv);
}
