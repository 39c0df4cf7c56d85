#include "app/startup.h"
#include "base/keptmemory.h"

using namespace marlowen;

int main(int argc, char **argv)
{
    keepFreedMemory();
    return runMarlowen(argc, argv);
}
