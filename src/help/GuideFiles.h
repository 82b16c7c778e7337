// Putting the guide on disk: its pages (each written to a temporary file and
// renamed over the old one), its pictures under "images/", and the size of a
// window's picture read back from the PNG's header.
#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <vector>

#include "help/GuidePages.h"

namespace guide {

// Writes `pages` into `folder`, in order. False on the first page that cannot
// be written, with a sentence for the user in *error.
bool WritePages(const QString& folder, const std::vector<Page>& pages, QString* error);

// Saves `picture` as `folder`/`name` ("images/deck.png"), making the images
// folder when needed.
bool SavePicture(const QString& folder, const QString& name, const QImage& picture, QString* error);

// The size in the header of the window page's picture in `folder` (empty when
// the picture is missing or not a PNG).
QSize PictureSizeOnDisk(const QString& folder, const QString& pageFile);

}  // namespace guide
