"""Generator of the sample content library; see generate.py."""
