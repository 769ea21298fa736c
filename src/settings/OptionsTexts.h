#pragma once

#include <QString>

// Message texts of the Options dialog (captions, labels and tool tips live in frmOptions.ui).
namespace OptionsTexts {

inline const QString kExampleUserid = QStringLiteral("wren");
inline const QString kExampleEmail = QStringLiteral("wren@example.com");
inline const QString kExampleImageUrl = QStringLiteral("http://www.example.com/~wren/camera.jpg");
inline const QString kExampleImageDirUrl = QStringLiteral("http://www.example.com/~wren/");

inline const QString kInvalidUseridTitle = QStringLiteral("Invalid Userid");
inline const QString kInvalidUserid =
    QStringLiteral("Userid's don't usually have an '@' in them.  Please note this field is for "
                   "Userid, not email address.  Userid is usually the just the part preceeding "
                   "the '@'.  For instance, my userid is '") +
    kExampleUserid + QStringLiteral("', not '") + kExampleEmail +
    QStringLiteral("'.  Very few web space providers require a '@' in the userid.  If you aren't "
                   "sure, don't include the '@' and everything after it.");

inline const QString kHostUploadHelpTitle = QStringLiteral("Host Upload Directory Help");
inline const QString kHostUploadHelp =
    QStringLiteral("This field contains the location of the directory you place your files on "
                   "your ISP in relationship to the login directory. ") +
    QStringLiteral("Once TB logs onto your FTP Server, it will do a change directory into the "
                   "directory you specify in this field. ") +
    QStringLiteral("If you are in the directory you want to store your images when you first "
                   "logon to your FTP site, then you need put nothing in this field. ") +
    QStringLiteral("If you change into a directory when you logon to your FTP site, then you "
                   "should put that directory or directories here. ") +
    QStringLiteral("This should not contain a full path including www.etc... It should only "
                   "contain the subdirectories in relationship to the root logon directory. ") +
    u'\n' + QStringLiteral("You can find some example scenarios in the User's Guide.");

inline const QString kWebRootHelpTitle = QStringLiteral("Web Root Location Help");
inline const QString kWebRootHelp =
    QStringLiteral("This field is used to create the automatic links to your images in your ad "
                   "listing. ") +
    QStringLiteral("TB takes the name of your image files, and tacks it onto the end of this "
                   "setting to create ") +
    QStringLiteral("the link.  Therefore, this field should contain everything that a link to "
                   "your graphic ") +
    u'\n' + QStringLiteral("should contain except the actual filename at the end. ") +
    QStringLiteral("For instance, if you normally put ") + kExampleImageUrl +
    QStringLiteral(" into ") +
    QStringLiteral("the Image URL box on the eBay start auction screen, then you would place ") +
    kExampleImageDirUrl + u' ' + QStringLiteral("into this field.  ") +
    QStringLiteral("You can find some example scenarios in the User's Guide.");

// Connection test result; the host is the one last applied.
inline QString connectionSucceeded(const QString& host)
{
    return QStringLiteral("The attempt to connect to ") + host + QStringLiteral(" was successful.");
}

inline const QString kSaveFailedTitle = QStringLiteral("Error");
inline QString saveFailed(const QString& file)
{
    return QStringLiteral("The settings could not be written to ") + file +
           QStringLiteral(".  Check that the folder exists and can be written, then press Apply "
                          "again; your changes are still in the dialog.");
}

} // namespace OptionsTexts
