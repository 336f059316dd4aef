// Placeholder until the subsystem's first classes arrive; delete it then.
