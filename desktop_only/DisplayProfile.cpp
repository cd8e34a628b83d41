// Placeholder translation unit; the codec seams join this library.
