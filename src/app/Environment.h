#pragma once

#include <QString>

namespace app {

/// What either program does before anything else, and before the application object is made: the three
/// standard streams are open, folders of the environment are whole paths, texts are UTF-8, and what the
/// libraries say is printed without anything that a terminal obeys.
void prepareProcess();

/// Makes sure that texts are UTF-8, whatever the environment says: Qt needs such a locale. Called
/// before the application object is made.
void ensureUtf8Locale();

/// The resource folder that belongs to the running program: the neighbour of the folder it is in.
QString resourcesFolder();
/// The folder that contains the application; tools run in it.
QString workingFolder();

} // namespace app
