// Placeholder until the main window arrives; delete it then.
