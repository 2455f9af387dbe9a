// The report layer: filled in by the report engine.
