// Gives the build something to compile the shared headers with.
