' Unknown shared method.
Print NSUserDefaultsZEL.NSGlobalDoman
