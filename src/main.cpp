// Mixora entry point.
#include "app/CMixoraApp.h"

int main(int argc, char** argv) {
    return CMixoraApp::Run(argc, argv);
}
