// The classification screens.
