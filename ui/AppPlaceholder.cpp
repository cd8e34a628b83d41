// Placeholder translation unit; the widgets join this library.
