#pragma once

#include "selection/KXSelection.h"
#include "summary/ConversionSummary.h"

#include <QUrl>

namespace app {

class OpenQueue;
class Program;

/// What a press of Convert would make of the open films, in words and before it starts. A plain value.
struct ConvertForecast
{
    bool isOpen = false;  ///< a film is
    bool isReady = false; ///< something would start
    QString name;         ///< the current film's result, without its folder
    QString size;
    QString others;       ///< of the other open films; empty where there are none
    int staying = 0;      ///< how many of them stay open
    int firstToStay = -1; ///< the row of the first of these; -1 where none does
    QString sentence;
    summary::Problem problem;
};

ConvertForecast convertForecast(Program &program, const OpenQueue &openQueue);
/// As a conversion or an extraction of the current film would be handed to the queue.
SelectionPointer jobSelection(Program &program);

/// Of the settings, which may reach further than the film that is shown: a sentence, empty with one film.
QString reachOfPresets(Program &program, const OpenQueue &openQueue);

/// Where results of the current film go: "/home/me/films", and whether the folder was chosen.
QString resultFolder(Program &program, const QUrl &source);
bool resultFolderIsChosen(Program &program);

/// Of an open film in the list: "Ready · 1:32:08", "No video ticked".
struct FilmState
{
    bool isReady = false;
    QString text;
};
FilmState filmState(Program &program, const OpenQueue &openQueue, int row);

} // namespace app
