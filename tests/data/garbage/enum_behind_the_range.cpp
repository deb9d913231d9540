\ExportedByExportedByfor()__stdcall enum inline x;
