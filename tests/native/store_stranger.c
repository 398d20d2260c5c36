// A program that has GNUstep base in its memory and not libzelnative. It waits until it is ended.
#include <unistd.h>

int main(void) { return pause(); }
