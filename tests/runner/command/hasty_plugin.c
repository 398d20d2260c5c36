// A plugin that takes it for granted that its host has what it asks for.
typedef void (*Function)(void);
typedef Function (*Resolver)(const char* name);

void REALPluginMain(Resolver resolver);
void REALPluginMain(Resolver resolver) { resolver("TimeMachineStart")(); }
