// A shared library that is no plugin.
int noPlugin(void);
int noPlugin(void) { return 0; }
