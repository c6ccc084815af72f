// The browser session and its commands live in this folder.
