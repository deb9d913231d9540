{static }{typedef }{class }{interface }{virtual }{inline }{enum }{struct }{class ExportedBy }{return }{delete }{else }
class :{}interface A:{}typedef )else x{ExportedBy }static